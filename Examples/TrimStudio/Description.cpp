#include "Description.h"

#include <AppKit/NSScreen.h>
#include <AppKit/NSWindow.h>

#include <nlohmann/json.hpp>

namespace trimstudio {

using namespace zr;
using Json = nlohmann::ordered_json;

namespace {

constexpr double kMillisecondsPerSecond = 1000;

Json pixels(const NSView& view, const NSRect& rect) {
    const NSWindow& window = *view.window();
    const NSRect onScreen = window.convertRectToScreen(view.convertRect_toView(rect, nullptr));
    const double scale = window.backingScaleFactor();
    const double top = NSScreen::mainScreen().frame().size.height - NSMaxY(onScreen);
    return {onScreen.origin.x * scale, top * scale, onScreen.size.width * scale, onScreen.size.height * scale};
}

Json slider(const ClipSlider& view) {
    return {{"rect", pixels(view, view.bounds())},
            {"track", pixels(view, view.rcSlider())},
            {"leftHandle", pixels(view, view.rcClipLeft())},
            {"rightHandle", pixels(view, view.rcClipRight())},
            {"start", view.selectionItem()->dStart() / kMillisecondsPerSecond},
            {"length", view.selectionItem()->dLength() / kMillisecondsPerSecond}};
}

Json slider(const PositionSlider& view) {
    return {{"rect", pixels(view, view.bounds())},
            {"track", pixels(view, view.rcSlider())},
            {"knob", pixels(view, view.rcKnob())},
            {"value", view.dCurValue() / kMillisecondsPerSecond}};
}

Json button(const NSButton& view) {
    return {{"rect", pixels(view, view.bounds())}, {"enabled", view.isEnabled()}};
}

Json timeField(const SWTimeEditView& view) {
    Json result = {{"rect", pixels(view, view.bounds())}};
    for (const auto& [name, field] :
         {std::pair{"hours", view.lblHour()}, std::pair{"minutes", view.lblMinite()},
          std::pair{"seconds", view.lblSecond()}})
        result[name] = {{"rect", pixels(*field, field->bounds())}, {"text", field->stringValue()}};
    return result;
}

Json orNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); }

} // namespace

std::string describe(const Description& facts, const EditorView& editor) {
    Json views = {{"window", {{"rect", pixels(editor, editor.bounds())}}}};
    if (!editor.slider()->isHiddenOrHasHiddenAncestor()) {
        views["splitSlider"] = slider(*editor.slider());
        views["progressSlider"] = slider(*editor.positionSlider());
        views["startField"] = timeField(*editor.startField());
        views["lengthField"] = timeField(*editor.lengthField());
    }
    views["keepBeforeButton"] = button(*editor.keepBeforeButton());
    views["keepAfterButton"] = button(*editor.keepAfterButton());
    views["saveButton"] = button(*editor.saveButton());
    const Json whole = {{"file", facts.file},
                        {"duration", facts.duration},
                        {"saved", orNull(facts.saved)},
                        {"message", orNull(facts.message)},
                        {"views", std::move(views)}};
    // File names may be any bytes.
    return whole.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace trimstudio
