// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace zr {

inline const std::string NSDefaultRunLoopMode = "kCFRunLoopDefaultMode";

// Something that keeps a run loop going; no data comes through it.
class ZR_EXPORT NSPort : public NSObject {
public:
    ZR_CLASS(NSPort, NSObject)

    static std::shared_ptr<NSPort> port();
};

// What a thread would wait for. Threads here wait for their queues alone, so that what is added is kept, until
// the thread ends, and nothing comes of it. Each thread has its own.
class ZR_EXPORT NSRunLoop : public NSObject {
public:
    ZR_CLASS(NSRunLoop, NSObject)

    static NSRunLoop& currentRunLoop();

    void addPort_forMode(const std::shared_ptr<NSPort>& port, const std::string& mode);
    const std::vector<std::shared_ptr<NSPort>>& portsForMode(const std::string& mode) { return ports_[mode]; }

private:
    std::map<std::string, std::vector<std::shared_ptr<NSPort>>> ports_;
};

} // namespace zr
