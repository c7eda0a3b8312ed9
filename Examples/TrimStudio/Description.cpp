// SPDX-License-Identifier: MIT
#include "Description.h"

#include <AppKit/NSProgressIndicator.h>
#include <AppKit/NSScreen.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSWindow.h>

#include <nlohmann/json.hpp>

#include <algorithm>

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

double pixelsPerPoint(const NSView& view) { return view.window()->backingScaleFactor(); }

// The texts of the first column.
Json rows(NSTableView& table) {
    constexpr long kMost = 100;
    Json texts = Json::array();
    const auto source = table.dataSource();
    const long count = source ? std::min(source->numberOfRowsInTableView(table), kMost) : 0;
    for (long row = 0; row < count; ++row)
        texts.push_back(
            source->tableView_objectValueForTableColumn_row(table, *table.tableColumns().front(), row));
    return texts;
}

void collect(NSView& view, const NSView& content, Json& into) {
    const double scale = pixelsPerPoint(content);
    if (view.isHidden()) return;
    if (auto* const table = dynamic_cast<NSTableView*>(&view)) {
        into["rows"] = rows(*table);
        return;
    }
    if (const auto* const button = dynamic_cast<const NSButton*>(&view)) {
        const NSRect rect = view.convertRect_toView(view.bounds(), &content);
        into["buttons"].push_back({{"title", button->title()},
                                   {"rect",
                                    {rect.origin.x * scale, (NSMaxY(content.bounds()) - NSMaxY(rect)) * scale,
                                     rect.size.width * scale, rect.size.height * scale}},
                                   {"enabled", button->isEnabled()}});
    } else if (const auto* const label = dynamic_cast<const NSTextField*>(&view)) {
        into["texts"].push_back(label->stringValue());
    } else if (const auto* const bar = dynamic_cast<const NSProgressIndicator*>(&view)) {
        into["progress"] = bar->doubleValue();
    }
    for (const auto& subview : view.subviews()) collect(*subview, content, into);
}

Json panel(const NSWindow* window) {
    if (!window || !window->isVisible()) return nullptr;
    auto& content = *window->contentView();
    const NSSize size = content.bounds().size;
    Json result = {{"size", {size.width * pixelsPerPoint(content), size.height * pixelsPerPoint(content)}},
                   {"key", window->isKeyWindow()},
                   {"texts", Json::array()},
                   {"buttons", Json::array()}};
    collect(content, content, result);
    return result;
}

Json orNull(const std::optional<std::string>& text) { return text ? Json(*text) : Json(nullptr); }

// File names may be any bytes.
std::string line(const Json& value) { return value.dump(-1, ' ', false, Json::error_handler_t::replace); }

} // namespace

std::string describePreferences(const NSWindow& window, const std::string& pane) {
    Json shown = panel(&window);
    if (!shown.is_null()) {
        shown["rect"] = pixels(*window.contentView(), window.contentView()->bounds());
        shown["title"] = window.title();
        shown["pane"] = pane;
    }
    return line({{"preferences", std::move(shown)}});
}

std::string describe(const Description& facts, const EditorView& editor) {
    Json views = {{"window", {{"rect", pixels(editor, editor.bounds())}}}};
    if (!editor.slider()->isHiddenOrHasHiddenAncestor()) {
        views["splitSlider"] = slider(*editor.slider());
        views["progressSlider"] = slider(*editor.positionSlider());
        views["startField"] = timeField(*editor.startField());
        views["lengthField"] = timeField(*editor.lengthField());
    }
    views["splitButton"] = button(*editor.splitButton());
    views["saveButton"] = button(*editor.saveButton());
    const Json whole = {{"file", facts.file},           {"duration", facts.duration},
                        {"saved", orNull(facts.saved)}, {"message", orNull(facts.message)},
                        {"restoring", facts.restoring}, {"sheet", panel(facts.sheet)},
                        {"alert", panel(facts.alert)},  {"views", std::move(views)}};
    return line(whole);
}

} // namespace trimstudio
