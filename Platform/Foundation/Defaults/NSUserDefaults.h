// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>
#include <Foundation/PropertyList.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace zr {

class DefaultsFile;

// What the application remembers about its user: property-list values by key, in memory and in one file. From
// any thread. A value that is set can be read at once; it reaches the disk soon after, in the background, and
// at the latest when the host goes or the program ends. What cannot be written stays in memory, is logged, and
// is tried again. Several processes may use one file: of each key the last one to write it wins.
class ZR_EXPORT NSUserDefaults : public NSObject {
public:
    ZR_CLASS(NSUserDefaults, NSObject)

    // Belongs to the host that is installed: another one comes with its own. Never null; held by the caller,
    // since a background thread may still use it when the host goes.
    static std::shared_ptr<NSUserDefaults> standardUserDefaults();

    // With an empty path the values are kept in memory alone.
    bool initWithFile(const std::filesystem::path& file);
    NSUserDefaults();
    ~NSUserDefaults() override;
    void dealloc() override;

    // Null when there is no value. A value never changes once it is stored.
    std::shared_ptr<const PropertyList> objectForKey(std::string_view key) const;
    // No value removes the key. Throws std::invalid_argument, and changes nothing, when key or value cannot be
    // stored (see PropertyList::fault).
    void setObject_forKey(std::optional<PropertyList> value, const std::string& key);
    void removeObjectForKey(const std::string& key);

    // Numbers and truths as text; nothing for values of other types.
    std::optional<std::string> stringForKey(std::string_view key) const;
    // Null when the value is of another type.
    std::shared_ptr<const PropertyList::Array> arrayForKey(std::string_view key) const;
    std::shared_ptr<const PropertyList::Dictionary> dictionaryForKey(std::string_view key) const;
    std::shared_ptr<const NSData> dataForKey(std::string_view key) const;
    // Of a real number its whole part, of text the number it begins with; 0 of anything else.
    std::int64_t integerForKey(std::string_view key) const;
    // Of a number whether it is not 0, of text whether it begins with Y, T or a digit but 0; else false.
    bool boolForKey(std::string_view key) const;

    // Writes what was set, and reads what other processes have written. True when all values are on disk.
    bool synchronize();
    // The same where something was set since; else does not look at the file.
    bool writeChanges();

private:
    template <class T>
    std::shared_ptr<const T> valueForKey(std::string_view key) const;
    void change(const std::string& key, std::shared_ptr<const PropertyList> value);
    void writeInBackground();
    bool exchangeWithFile();
    void takeOver(SharedValues fromFile);

    std::mutex turn_; // for the file; taken before lock_
    std::unique_ptr<DefaultsFile> file_;
    std::string complaint_; // the last one, which is not repeated

    mutable std::mutex lock_;
    SharedValues values_;           // guarded by lock_, like what follows
    std::set<std::string> changed_; // keys that are not on disk as they are in values_
    bool willWrite_ = false;        // in the background
};

} // namespace zr
