// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSAlert.h>
#include <Base/Compiler.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zr {

// One button of an alert, and what pressing it does.
class ZR_EXPORT ZRAlertAction : public NSObject {
public:
    ZR_CLASS(ZRAlertAction, NSObject)
    using Block = std::function<void()>;

    const std::string& title() const { return title_; }
    void setTitle(const std::string& title) { title_ = title; }
    const Block& actionBlock() const { return actionBlock_; } // may be empty
    void setActionBlock(const Block& block) { actionBlock_ = block; }

    static std::shared_ptr<ZRAlertAction> actionWithTitle_block(const std::string& title, const Block& block);
    // Titled by the application's own texts of these names.
    static std::shared_ptr<ZRAlertAction> OK(const Block& block);
    static std::shared_ptr<ZRAlertAction> CANCEL(const Block& block);
    static std::shared_ptr<ZRAlertAction> EXIT(const Block& block);
    static std::shared_ptr<ZRAlertAction> CONFIRM(const Block& block);
    static std::shared_ptr<ZRAlertAction> DISCARD(const Block& block);

private:
    std::string title_;
    Block actionBlock_;
};

// Asks a question in one call. Each returns when the user has answered. Main thread only.
class ZR_EXPORT ZRAlert : public NSObject {
public:
    ZR_CLASS(ZRAlert, NSObject)
    using Actions = std::vector<std::shared_ptr<ZRAlertAction>>;
    using ClickHandler = std::function<void(ZRAlertAction&)>;
    using BeforeRun = std::function<void(NSAlert&)>;

    // A notice with one button. An empty info is left out.
    static void OK_info(const std::string& message, const std::optional<std::string>& info);
    // A warning.
    static void Actions_title_info_accessoryView(const Actions& actions, const std::string& title,
                                                 const std::optional<std::string>& info,
                                                 const std::shared_ptr<NSView>& accessoryView);
    static void Actions_title_info_alertStyle_accessoryView_clickHander(
        const Actions& actions, const std::string& title, const std::optional<std::string>& info,
        unsigned alertStyle, const std::shared_ptr<NSView>& accessoryView, const ClickHandler& clickHander);
    // Buttons in the order of the actions, the first one the default; null is left out, and named in the log.
    // The block of the action whose button was pressed runs after the alert has gone, then the click handler
    // with it. `beforeRun` sees the alert with all its parts, just before it is shown.
    static void Actions_title_info_alertStyle_accessoryView_clickHander_beforeRun(
        const Actions& actions, const std::string& title, const std::optional<std::string>& info,
        unsigned alertStyle, const std::shared_ptr<NSView>& accessoryView, const ClickHandler& clickHander,
        const BeforeRun& beforeRun);
};

} // namespace zr
