// SPDX-License-Identifier: MIT
#pragma once

#include "Table.h"

namespace zr::headless {

using TablePeers = port::MakersBy<port::TableMakers, //
                                  Table,             //
                                  TableHeader>;

} // namespace zr::headless
