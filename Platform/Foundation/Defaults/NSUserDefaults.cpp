// SPDX-License-Identifier: MIT
#include "DefaultsFile.h"

#include <Foundation/Dispatch.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUserDefaults.h>
#include <FoundationBackends/InstalledHost.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zr {

namespace {

constexpr std::int64_t kSecondsUntilNextTry = 10;

std::int64_t wholePart(double number) {
    constexpr double kBeyond = 9223372036854775808.0; // 2 to the power of 63
    if (std::isnan(number)) return 0;
    if (number >= kBeyond) return std::numeric_limits<std::int64_t>::max();
    if (number < -kBeyond) return std::numeric_limits<std::int64_t>::min();
    return static_cast<std::int64_t>(number);
}

namespace fs = std::filesystem;

fs::path environmentPath(const backend::Program& program, std::string_view name) {
    const auto value = program.variable(name);
    return value.starts_with('/') ? value : ""; // others do not count
}

fs::path standardFile(const backend::InstalledHost& installed) {
    if (installed.host.userDefaults) return *installed.host.userDefaults;
    fs::path folder = environmentPath(installed.program, "XDG_CONFIG_HOME");
    if (folder.empty()) {
        folder = environmentPath(installed.program, "HOME");
        if (folder.empty()) return {};
        folder /= ".config";
    }
    fs::path file = folder / installed.program.executable.filename();
    file += ".plist";
    return file;
}

struct Standard : backend::Part {
    explicit Standard(const backend::InstalledHost& installed)
        : defaults(make<NSUserDefaults>(&NSUserDefaults::initWithFile, standardFile(installed))) {}

    void hostEnds() override { defaults->writeChanges(); }

    const std::shared_ptr<NSUserDefaults> defaults;
};

} // namespace

ZR_CLASS_TABLE(NSUserDefaults)

std::shared_ptr<NSUserDefaults> NSUserDefaults::standardUserDefaults() {
    const auto host = backend::current();
    return host->part<Standard>().defaults;
}

NSUserDefaults::NSUserDefaults() = default;
NSUserDefaults::~NSUserDefaults() = default;

bool NSUserDefaults::initWithFile(const std::filesystem::path& file) {
    if (file.empty()) return true;
    file_ = std::make_unique<DefaultsFile>(file);
    exchangeWithFile();
    return true;
}

void NSUserDefaults::dealloc() {
    writeChanges();
    Super::dealloc();
}

// Values

std::shared_ptr<const PropertyList> NSUserDefaults::objectForKey(std::string_view key) const {
    const std::lock_guard guard(lock_);
    const auto found = values_.find(key);
    return found == values_.end() ? nullptr : found->second;
}

void NSUserDefaults::setObject_forKey(std::optional<PropertyList> value, const std::string& key) {
    const char* fault = PropertyList(key).fault();
    if (!fault && value) fault = value->fault();
    if (fault) throw std::invalid_argument(stringWithFormat("No value of user defaults: %@", fault));
    change(key, value ? std::make_shared<const PropertyList>(std::move(*value)) : nullptr);
}

void NSUserDefaults::removeObjectForKey(const std::string& key) { setObject_forKey(std::nullopt, key); }

void NSUserDefaults::change(const std::string& key, std::shared_ptr<const PropertyList> value) {
    {
        const std::lock_guard guard(lock_);
        if (value)
            values_.insert_or_assign(key, std::move(value));
        else
            values_.erase(key);
        if (!file_) return;
        changed_.insert(key);
        if (std::exchange(willWrite_, true)) return;
    }
    dispatch_async(dispatch_queue_t::global, [self = retained(this)] { self->writeInBackground(); });
}

template <class T>
std::shared_ptr<const T> NSUserDefaults::valueForKey(std::string_view key) const {
    const auto object = objectForKey(key);
    const T* value = object ? object->get<T>() : nullptr;
    return value ? std::shared_ptr<const T>(object, value) : nullptr;
}

std::optional<std::string> NSUserDefaults::stringForKey(std::string_view key) const {
    const auto object = objectForKey(key);
    if (!object) return std::nullopt;
    if (const auto* text = object->get<std::string>()) return *text;
    if (const auto* truth = object->get<bool>()) return *truth ? "1" : "0";
    if (const auto* whole = object->get<std::int64_t>()) return stringWithFormat("%@", *whole);
    if (const auto* real = object->get<double>()) return stringWithFormat("%@", *real);
    return std::nullopt;
}

std::shared_ptr<const PropertyList::Array> NSUserDefaults::arrayForKey(std::string_view key) const {
    return valueForKey<PropertyList::Array>(key);
}

std::shared_ptr<const PropertyList::Dictionary> NSUserDefaults::dictionaryForKey(std::string_view key) const {
    return valueForKey<PropertyList::Dictionary>(key);
}

std::shared_ptr<const NSData> NSUserDefaults::dataForKey(std::string_view key) const {
    return valueForKey<NSData>(key);
}

std::int64_t NSUserDefaults::integerForKey(std::string_view key) const {
    const auto object = objectForKey(key);
    if (!object) return 0;
    if (const auto* truth = object->get<bool>()) return *truth ? 1 : 0;
    if (const auto* whole = object->get<std::int64_t>()) return *whole;
    if (const auto* real = object->get<double>()) return wholePart(*real);
    const auto* text = object->get<std::string>();
    return text ? integerValue(*text) : 0;
}

bool NSUserDefaults::boolForKey(std::string_view key) const {
    const auto object = objectForKey(key);
    if (!object) return false;
    if (const auto* truth = object->get<bool>()) return *truth;
    if (const auto* whole = object->get<std::int64_t>()) return *whole != 0;
    if (const auto* real = object->get<double>()) return *real != 0;
    const auto* text = object->get<std::string>();
    return text && !text->empty() && std::string_view("YyTt123456789").find(text->front()) != std::string::npos;
}

// The file

bool NSUserDefaults::synchronize() { return !file_ || exchangeWithFile(); }

bool NSUserDefaults::writeChanges() {
    {
        const std::lock_guard guard(lock_);
        if (changed_.empty()) return true;
    }
    return synchronize();
}

void NSUserDefaults::writeInBackground() {
    {
        const std::lock_guard guard(lock_);
        willWrite_ = false;
    }
    if (writeChanges()) return;
    {
        const std::lock_guard guard(lock_);
        if (std::exchange(willWrite_, true)) return;
    }
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, kSecondsUntilNextTry * NSEC_PER_SEC),
                   dispatch_queue_t::global, [self = retained(this)] { self->writeInBackground(); });
}

void NSUserDefaults::takeOver(SharedValues fromFile) {
    const std::lock_guard guard(lock_);
    for (const auto& key : changed_) {
        if (const auto own = values_.find(key); own != values_.end())
            fromFile.insert_or_assign(key, own->second);
        else
            fromFile.erase(key);
    }
    values_ = std::move(fromFile);
}

bool NSUserDefaults::exchangeWithFile() {
    using State = DefaultsFile::State;
    const std::lock_guard turn(turn_);
    DefaultsFile::Reading reading{.state = State::asLastSeen};
    std::set<std::string> writing;
    const auto read = [&] {
        reading = file_->read();
        if (reading.state == State::changed) takeOver(std::move(reading.contents.values));
    };
    // A file that is gone, or that was set aside, takes nothing with it: what is known is written again.
    const auto isDone = [&] {
        const std::lock_guard guard(lock_);
        const bool isWhole = reading.state == State::asLastSeen || reading.state == State::changed;
        return changed_.empty() && (isWhole || (reading.state == State::missing && values_.empty()));
    };
    try {
        read();
        if (!isDone()) {
            const DefaultsFile::Lock lock(*file_);
            read();
            if (reading.state == State::damaged) {
                const auto aside = file_->setAside();
                NSLog("The user defaults in %@ are not used: %@. The file is now %@.", file_->path().string(),
                      reading.contents.fault, aside.string());
                reading.state = State::missing;
            }
            if (!isDone()) {
                SharedValues values;
                {
                    const std::lock_guard guard(lock_);
                    values = values_;
                    writing.swap(changed_);
                }
                file_->write(values);
            }
        }
        complaint_.clear();
        return true;
    } catch (const std::system_error& error) {
        {
            const std::lock_guard guard(lock_);
            changed_.merge(writing);
        }
        std::string complaint = stringWithFormat("The user defaults in %@ are not stored: %@.",
                                                 file_->path().string(), error.what());
        if (reading.state == State::damaged)
            complaint += " They are not used either: " + reading.contents.fault + ".";
        if (std::exchange(complaint_, complaint) != complaint) NSLogText(complaint);
        return false;
    }
}

} // namespace zr
