// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSObject.h>

#include <functional>
#include <memory>

namespace trimstudio {

class PreferencesWindow;
class TrustedPane;

// Opens the preferences window: one, made when it is first asked for and kept. The folders that the user trusts
// are restored from the start. Main thread only.
class Preferences : public zr::NSObject {
public:
    ZR_CLASS(Preferences, zr::NSObject)
    Preferences();
    ~Preferences() override;

    // With `describes`, every change of the window is described on standard output.
    bool initWithDescribes(bool describes);
    void showPreferences(zr::NSObject* sender); // an action: "showPreferences:"
    // What to do when the trusted folders, or their restore, may have changed.
    void setDidChange(std::function<void()> didChange) { didChange_ = std::move(didChange); }

private:
    std::shared_ptr<TrustedPane> trusted_;
    std::shared_ptr<PreferencesWindow> window_;
    std::function<void()> didChange_;
    bool describes_ = false;
};

} // namespace trimstudio
