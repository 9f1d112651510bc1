// wifiap-decode: prints a body's elements with the field names of its message.
#include <stdio.h>

#include <iostream>
#include <iterator>

#include "decode_cli.h"

int main(int argc, char **argv) {
    std::string out, err;
    int status = wifiap::tools::runDecode(
        std::vector<std::string>(argv + 1, argv + argc),
        [] { return std::string(std::istreambuf_iterator<char>(std::cin), {}); }, out, err);
    fwrite(out.data(), 1, out.size(), stdout);
    fwrite(err.data(), 1, err.size(), stderr);
    return status;
}
