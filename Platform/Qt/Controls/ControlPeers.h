// SPDX-License-Identifier: MIT
#pragma once

#include "Button.h"
#include "Label.h"
#include "Progress.h"
#include "ScrollingText.h"
#include "TextField.h"

namespace zr::qt {

using ControlPeers = port::MakersBy<port::ControlMakers, //
                                    ButtonPeer,          //
                                    LabelPeer,           //
                                    ProgressPeer,        //
                                    ScrollingTextPeer,   //
                                    SpinnerPeer,         //
                                    TextFieldPeer>;

} // namespace zr::qt
