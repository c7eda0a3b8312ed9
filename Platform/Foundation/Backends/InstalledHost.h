// SPDX-License-Identifier: MIT
#pragma once

#include <FoundationBackends/Host.h>
#include <FoundationBackends/Program.h>

#include <memory>
#include <mutex>
#include <typeindex>
#include <typeinfo>
#include <vector>

namespace zr::backend {

class InstalledHost;

// What somebody keeps with the host: made when it is first asked for, gone when the host goes, in no order.
class Part {
public:
    Part() = default;
    Part(const Part&) = delete;
    Part& operator=(const Part&) = delete;
    virtual ~Part() = default;

    // Another host has taken the place, there is none any more, or the program ends; it may come more than
    // once, and some thread may use the part even after it.
    virtual void hostEnds() {}
};

// A host, the program it was installed in, and the parts. From any thread.
class InstalledHost {
public:
    explicit InstalledHost(Host given);
    InstalledHost(const InstalledHost&) = delete;
    InstalledHost& operator=(const InstalledHost&) = delete;

    const Host host;
    const Program program;

    // Made of the host as T(*this), which may ask for parts of other kinds. Lives as long as the host is held.
    template <class T>
    T& part() {
        return static_cast<T&>(partOf(
            typeid(T), [](InstalledHost& self) -> std::unique_ptr<Part> { return std::make_unique<T>(self); }));
    }

    // Tells the parts, in the order in which they were first asked for.
    void end();

private:
    struct Place {
        explicit Place(std::type_index kind) : type(kind) {}
        const std::type_index type;
        std::mutex lock;
        std::unique_ptr<Part> part; // guarded by the lock; never changes once it is there
    };

    Part& partOf(std::type_index type, std::unique_ptr<Part> (*make)(InstalledHost&));
    Place& placeOf(std::type_index type);

    std::mutex lock_;
    std::vector<std::unique_ptr<Place>> places_; // guarded by lock_; only grows
};

// The one that is installed; or one without queues, made of the environment alone.
std::shared_ptr<InstalledHost> current();

} // namespace zr::backend
