// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <random>
#include <vector>

#include "app/application.h"
#include "doc/command.h"

namespace plumetta {

// What a person does in one moment, at random.
class RandomEditor {
 public:
  RandomEditor(Application& app, CPlumettaDoc& doc, unsigned seed) : app_(app), doc_(doc), random_(seed) {
    for (const Command& command : commandTable()) {
      if (command.parameters.empty()) commands_.push_back(&command);
    }
  }

  void act() {
    doc_.select(frame(), frame());
    doc_.setCursor(frame());
    doc_.setActive(ActiveOperation::toggle, below(doc_.wave().channels()));
    runCommand(doc_, *commands_[static_cast<size_t>(below(static_cast<int>(commands_.size())))]);
    editEnvelope();
    drive();
    doc_.followPlayback();
  }

 private:
  int below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
  int frame() { return below(doc_.lastFrame() + 1); }

  void editEnvelope() {
    const Command& command = *findCommand(below(2) == 0 ? "envelope-point" : "envelope-invert");
    Arguments arguments = fallbackArguments(command);
    if (arguments.size() > 1) arguments[0] = FrameOrTime{static_cast<double>(frame()), false};
    runCommand(doc_, command, std::move(arguments));
  }
  void drive() {
    Transport& transport = app_.transport();
    switch (below(8)) {
      case 0:
        transport.toggleForward(&doc_);
        break;
      case 1:
        transport.toggleRewind(&doc_);
        break;
      case 2:
        transport.stop();
        break;
      case 3:
        transport.toggleLoop();
        break;
      default:
        if (!transport.controls().playing) transport.play(&doc_);
    }
  }

  Application& app_;
  CPlumettaDoc& doc_;
  std::mt19937 random_;
  std::vector<const Command*> commands_;
};

}  // namespace plumetta
