// SPDX-License-Identifier: MIT
#include <AppKit/NSButton.h>
#include <AppKit/NSView.h>
#include <Foundation/NSLog.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ZRAlert.h>

#include <algorithm>
#include <iterator>

namespace zr {

ZR_CLASS_TABLE(ZRAlertAction)
ZR_CLASS_TABLE(ZRAlert)

std::shared_ptr<ZRAlertAction> ZRAlertAction::actionWithTitle_block(const std::string& title,
                                                                    const Block& block) {
    auto action = make<ZRAlertAction>();
    action->setTitle(title);
    action->setActionBlock(block);
    return action;
}

std::shared_ptr<ZRAlertAction> ZRAlertAction::OK(const Block& block) {
    return actionWithTitle_block(AppLocalizedString("OK"), block);
}

std::shared_ptr<ZRAlertAction> ZRAlertAction::CANCEL(const Block& block) {
    return actionWithTitle_block(AppLocalizedString("Cancel"), block);
}

std::shared_ptr<ZRAlertAction> ZRAlertAction::EXIT(const Block& block) {
    return actionWithTitle_block(AppLocalizedString("Exit"), block);
}

std::shared_ptr<ZRAlertAction> ZRAlertAction::CONFIRM(const Block& block) {
    return actionWithTitle_block(AppLocalizedString("Confirm"), block);
}

std::shared_ptr<ZRAlertAction> ZRAlertAction::DISCARD(const Block& block) {
    return actionWithTitle_block(AppLocalizedString("Discard"), block);
}

void ZRAlert::OK_info(const std::string& message, const std::optional<std::string>& info) {
    const auto alert = make<NSAlert>();
    alert->setAlertStyle(NSAlertStyleWarning);
    alert->setMessageText(message);
    if (info && !info->empty()) alert->setInformativeText(*info);
    alert->addButtonWithTitle(AppLocalizedString("OK"));
    alert->runModal();
}

void ZRAlert::Actions_title_info_accessoryView(const Actions& actions, const std::string& title,
                                               const std::optional<std::string>& info,
                                               const std::shared_ptr<NSView>& accessoryView) {
    Actions_title_info_alertStyle_accessoryView_clickHander_beforeRun(actions, title, info, NSAlertStyleWarning,
                                                                      accessoryView, nullptr, nullptr);
}

void ZRAlert::Actions_title_info_alertStyle_accessoryView_clickHander(
    const Actions& actions, const std::string& title, const std::optional<std::string>& info,
    unsigned alertStyle, const std::shared_ptr<NSView>& accessoryView, const ClickHandler& clickHander) {
    Actions_title_info_alertStyle_accessoryView_clickHander_beforeRun(actions, title, info, alertStyle,
                                                                      accessoryView, clickHander, nullptr);
}

void ZRAlert::Actions_title_info_alertStyle_accessoryView_clickHander_beforeRun(
    const Actions& actions, const std::string& title, const std::optional<std::string>& info,
    unsigned alertStyle, const std::shared_ptr<NSView>& accessoryView, const ClickHandler& clickHander,
    const BeforeRun& beforeRun) {
    // Whose these are may be gone when the user has answered.
    Actions chosen;
    std::ranges::copy_if(actions, std::back_inserter(chosen),
                         [](const auto& action) { return action != nullptr; });
    if (chosen.size() < actions.size())
        NSLog("+[ZRAlert Actions:title:info:…]: an action that is null is left out");
    const ClickHandler handler = clickHander;
    const auto alert = make<NSAlert>();
    alert->setAlertStyle(static_cast<NSAlertStyle>(alertStyle));
    alert->setMessageText(title);
    alert->setInformativeText(info.value_or(""));
    for (const auto& action : chosen) alert->addButtonWithTitle(action->title());
    if (accessoryView) alert->setAccessoryView(accessoryView);
    if (beforeRun) beforeRun(*alert);
    // Unsigned: a response below the first button's is far beyond the last one.
    const auto index = static_cast<std::size_t>(alert->runModal()) - std::size_t{NSAlertFirstButtonReturn};
    if (index >= chosen.size()) return;
    const auto& action = chosen[index];
    if (const auto block = action->actionBlock()) block();
    if (handler) handler(*action);
}

} // namespace zr
