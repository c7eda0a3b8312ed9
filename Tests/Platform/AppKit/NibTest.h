// SPDX-License-Identifier: MIT
#pragma once

#include "Support/TemporaryFolder.h"

#include <AppKit/NSControl.h>
#include <AppKit/NSNib.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSString.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace zr::test {

// What happened to owners and probes, in order.
inline std::vector<std::string>& happenings() {
    static std::vector<std::string> list;
    return list;
}

// A file's owner.
class NibOwner : public NSObject, public NSWindowDelegate {
public:
    ZR_CLASS(NibOwner, NSObject)

    void awakeFromNib() override { happenings().push_back("owner awakes"); }
    void setWindow(const std::shared_ptr<NSWindow>& value) {
        note("window", value != nullptr);
        window = value;
    }
    void setView(const std::shared_ptr<NSView>& value) {
        note("view", value != nullptr);
        view = value;
    }
    void setField(const std::shared_ptr<NSTextField>& value) {
        note("field", value != nullptr);
        field = value;
    }
    void setName(const std::string& value) {
        happenings().push_back("owner's name " + value);
        name = value;
    }
    void press(NSObject* sender) { presses.push_back(sender); }

    std::shared_ptr<NSWindow> window;
    std::shared_ptr<NSView> view;
    std::shared_ptr<NSTextField> field;
    std::string name;
    std::vector<NSObject*> presses;

private:
    static void note(const char* outlet, bool connected) {
        happenings().push_back(stringWithFormat("owner's %s%s", outlet, connected ? "" : " none"));
    }
};

// A view of the application that files may name. It knows itself by its identifier.
class NibProbe : public NSControl {
public:
    ZR_CLASS(NibProbe, NSControl)

    bool initWithFrame(const NSRect& frame) override {
        happenings().push_back("probe by frame");
        return NSControl::initWithFrame(frame);
    }
    bool initWithCoder(NSCoder& coder) override {
        const bool made = NSControl::initWithCoder(coder);
        note("made");
        return made && identifier() != "nil";
    }
    void awakeFromNib() override {
        note(window() && window()->isVisible() ? "awakes in a visible window" : "awakes");
    }
    void setPartner(const std::shared_ptr<NSView>& value) {
        note("partner");
        partner = value;
    }
    void setOwner(const std::weak_ptr<NibOwner>& value) { owner = value; }
    void setText(const std::string& value) {
        note("text " + value);
        text = value;
    }
    void setNumber(double value) {
        if (value < 0) throw std::invalid_argument("a negative number");
        number = value;
    }
    void setFlag(bool value) { flag = value; }
    void setPoint(const NSPoint& value) { point = value; }
    void setColour(const NSColor& value) { colour = value; }

    std::weak_ptr<NSView> partner;
    std::weak_ptr<NibOwner> owner;
    std::string text;
    double number = 0;
    bool flag = false;
    NSPoint point;
    NSColor colour = NSColor::clearColor();

private:
    void note(const std::string& what) { happenings().push_back(identifier() + " " + what); }
};

void registerTestClasses(); // what files may name

class NibTest : public testing::Test {
protected:
    NibTest() {
        registerTestClasses();
        happenings().clear();
    }

    static std::string document(const std::string& objects) {
        std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<document type=\"com.apple.InterfaceBuilder3.Cocoa.XIB\" version=\"3.0\"><objects>";
        return text + objects + "</objects></document>";
    }
    // <view id="v" ...attributes> with a frame, and what else it contains.
    static std::string view(const std::string& contents, const std::string& attributes = "id=\"v\"") {
        return "<customView " + attributes +
               "><rect key=\"frame\" x=\"10\" y=\"20\" width=\"300\" height=\"200\"/>" + contents +
               "</customView>";
    }
    static std::string placeholder(const char* id, const std::string& contents) {
        return stringWithFormat("<customObject id=\"%s\">", id) + contents + "</customObject>";
    }

    std::shared_ptr<NSNib> read(const std::string& bytes) {
        path_ = folder_.write("Test.xib", bytes);
        return logged([&] { return make<NSNib>(&NSNib::initWithContentsOfFile, path_); });
    }
    bool instantiate(const NSNib& nib) {
        return logged([&] { return nib.instantiateWithOwner_topLevelObjects(owner_, &top_); });
    }
    // Reads the objects' text and makes them.
    bool open(const std::string& objects) {
        log_.clear();
        top_.clear();
        const auto nib = read(document(objects));
        return nib && instantiate(*nib);
    }
    template <class T>
    std::shared_ptr<T> top(std::size_t place) const {
        return place < top_.size() ? std::dynamic_pointer_cast<T>(top_[place]) : nullptr;
    }

    // Runs it, and adds the lines that it logs to log_, without time and with FILE in place of the path.
    template <class Work>
    std::invoke_result_t<Work> logged(Work work) {
        testing::internal::CaptureStderr();
        auto result = work();
        std::string lines = testing::internal::GetCapturedStderr();
        for (std::size_t at = 0, end; (end = lines.find('\n', at)) != std::string::npos; at = end + 1) {
            std::string line = lines.substr(at, end - at);
            line.erase(0, line.find("] ") + 2);
            if (const auto found = line.find(path_.string()); !path_.empty() && found != std::string::npos)
                line.replace(found, path_.string().size(), "FILE");
            log_.push_back(line);
        }
        return result;
    }

    headless::Platform platform_;
    const TemporaryFolder folder_;
    std::filesystem::path path_;
    std::shared_ptr<NibOwner> owner_ = make<NibOwner>();
    std::vector<std::shared_ptr<NSObject>> top_;
    std::vector<std::string> log_;
};

} // namespace zr::test
