// SPDX-License-Identifier: MIT
#include "InstalledHost.h"
#include "Waiting.h"

#include <cstdlib>
#include <utility>

namespace zr::backend {

namespace {

std::mutex& lock() {
    static auto* const mutex = new std::mutex;
    return *mutex;
}

// Leaked on purpose: threads may ask for it until the process ends.
std::shared_ptr<InstalledHost>& slot() {
    static auto* const installed = new std::shared_ptr<InstalledHost>;
    return *installed;
}

void endAtExit() {
    std::shared_ptr<InstalledHost> installed;
    {
        const std::lock_guard guard(lock());
        installed = slot();
    }
    if (installed) installed->end();
}

std::shared_ptr<InstalledHost> makeInstalled(Host host) {
    static const int registered = std::atexit(&endAtExit);
    static_cast<void>(registered);
    return std::make_shared<InstalledHost>(std::move(host));
}

void replace(std::shared_ptr<InstalledHost> installed) {
    {
        const std::lock_guard guard(lock());
        slot().swap(installed);
    }
    // What was there before goes after the lock: dropped blocks may ask for the host. It is told, and not left
    // to its last reference: a background thread may hold that until the process is gone.
    if (installed) installed->end();
}

} // namespace

InstalledHost::InstalledHost(Host given) : host(std::move(given)), program(Program::now()) {}

InstalledHost::Place& InstalledHost::placeOf(std::type_index type) {
    const std::lock_guard guard(lock_);
    for (const auto& place : places_)
        if (place->type == type) return *place;
    return *places_.emplace_back(std::make_unique<Place>(type));
}

Part& InstalledHost::partOf(std::type_index type, std::unique_ptr<Part> (*make)(InstalledHost&)) {
    Place& place = placeOf(type);
    const std::lock_guard guard(place.lock);
    if (!place.part) place.part = make(*this);
    return *place.part;
}

void InstalledHost::end() {
    std::vector<Place*> places;
    {
        const std::lock_guard guard(lock_);
        for (const auto& place : places_) places.push_back(place.get());
    }
    for (Place* const place : places) {
        Part* part = nullptr;
        {
            const std::lock_guard guard(place->lock);
            part = place->part.get();
        }
        if (part) part->hostEnds();
    }
}

std::shared_ptr<InstalledHost> current() {
    const std::lock_guard guard(lock());
    auto& installed = slot();
    if (!installed) installed = makeInstalled({});
    return installed;
}

void install(Host host) {
    setMayWait(true);
    replace(makeInstalled(std::move(host)));
}

void stopWaiting() { setMayWait(false); }

void uninstall() { replace(nullptr); }

} // namespace zr::backend
