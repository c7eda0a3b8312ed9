// SPDX-License-Identifier: MIT
#pragma once

#include "Button.h"
#include "Label.h"
#include "ProgressBar.h"
#include "TextField.h"

namespace zr::headless {

using ControlPeers = port::MakersBy<port::ControlMakers, //
                                    Button,              //
                                    Label,               //
                                    ProgressBar,         //
                                    ScrollingText,       //
                                    Spinner,             //
                                    TextField>;

} // namespace zr::headless
