// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zr::test {

// Root may write everywhere: for what others may not, this thread becomes like them until it ends.
inline void giveUpRootsPowers() {
    __user_cap_header_struct head{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct powers[2]{};
    if (syscall(SYS_capset, &head, powers) != 0) throw std::runtime_error("the powers cannot be given up");
}

} // namespace zr::test
