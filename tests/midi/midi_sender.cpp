// SPDX-License-Identifier: GPL-3.0-or-later
// A MIDI device for tests: an output port on the JACK server that sends what it reads from standard input, a
// message a line as numbers, as soon as somebody listens. Messages of which nothing has arrived may be lost
// at its end, with that of the input. Call: midi_sender NAME
#include <RtMidi.h>
#include <jack/jack.h>

#include <chrono>
#include <iostream>
#include <sstream>
#include <thread>

namespace {

// The connections of the port end in its number of listeners; they are looked at through a client of our own.
bool hasListener(jack_client_t* client, const std::string& owner) {
  const char** ports = jack_get_ports(client, owner.c_str(), JACK_DEFAULT_MIDI_TYPE, JackPortIsOutput);
  if (ports == nullptr) return false;
  const char** connections = jack_port_get_all_connections(client, jack_port_by_name(client, ports[0]));
  const bool connected = connections != nullptr;
  jack_free(connections);
  jack_free(ports);
  return connected;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string name = argc > 1 ? argv[1] : "Sender";
  jack_client_t* client = nullptr;
  for (int tries = 0; tries < 100 && client == nullptr; ++tries) {  // the server may just be starting
    if (tries > 0) std::this_thread::sleep_for(std::chrono::milliseconds(100));
    client = jack_client_open((name + " watch").c_str(), JackNoStartServer, nullptr);
  }
  if (client == nullptr) return 1;
  RtMidiOut out(RtMidi::UNIX_JACK, name);
  out.openVirtualPort("out");
  std::cout << "ready" << std::endl;
  for (int tries = 0; tries < 600 && !hasListener(client, name + ":"); ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream numbers(line);
    std::vector<unsigned char> message;
    for (int number; numbers >> number;) message.push_back(static_cast<unsigned char>(number));
    if (!message.empty()) out.sendMessage(&message);
  }
  jack_client_close(client);
}
