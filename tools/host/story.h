// The demo's story as it happens on the air, played by the server as the
// story's commands arrive: one server plays it the same way whether its
// clients are in its process (wifiap-demo) or not (wifiap-apd --story).
#pragma once

#include <stdint.h>

#include "server.h"

namespace wifiap::host {

// `stations` are there once the story's newcomer has joined: the others are
// there from the start. Once the addresses are set the newcomer probes for
// the access point; when a PIN WPS run starts it enrolls and joins (unless
// no station is to be there); a MAC filter applied bans the first station.
void playStory(Server &srv, uint32_t stations);

}  // namespace wifiap::host
