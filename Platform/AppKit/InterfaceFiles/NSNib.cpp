// SPDX-License-Identifier: MIT
#include "NibFile.h"

#include <AppKit/InstalledSystem.h>
#include <AppKit/NSApplication.h>
#include <AppKit/NSNib.h>
#include <AppKit/NSScrollView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSToolbar.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSLog.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zr {

ZR_CLASS_TABLE(NSNib)

namespace {

constexpr std::uintmax_t kMaximumBytes = std::uintmax_t{16} << 20;

using Objects = std::vector<std::shared_ptr<NSObject>>;

// One opening of a file.
class Instance {
public:
    Instance(const nib::File& file, const std::shared_ptr<NSObject>& owner, nib::Notes note)
        : file_(file), owner_(owner), note_(std::move(note)) {}

    // Throw nib::Broken.
    void make() {
        for (const auto& plan : file_.objects) {
            auto archive = plan.archive;
            auto object = plan.table->make(archive ? &*archive : nullptr);
            if (!object) throw nib::Broken(plan.description + ": it could not be made");
            objects_.push_back(std::move(object));
        }
        using enum nib::Object::Role;
        for (const auto role : {subview, tableColumn, clipView, headerView, contentView, toolbar})
            assemble(role);
    }
    void check() const {
        for (const auto& plan : file_.outlets) {
            const auto source = resolve(plan.source);
            const auto destination = resolve(plan.destination);
            const auto* const outlet = source ? source->class_().findOutlet(plan.name) : nullptr;
            if (outlet && !outlet->accepts(destination))
                throw nib::Broken(stringWithFormat("%@: %@ of %@ takes no %@", plan.description, plan.name,
                                                   source, destination));
        }
    }

    void connect() const {
        for (const auto& plan : file_.attributes) setAttribute(plan);
        for (const auto& plan : file_.outlets) connectOutlet(plan);
        for (const auto& plan : file_.actions) connectAction(plan);
    }
    void awake() const {
        for (const auto& object : objects_) object->awakeFromNib();
        if (owner_) owner_->awakeFromNib();
    }
    void show() const {
        for (std::size_t i = 0; i < objects_.size(); ++i)
            if (file_.objects[i].visibleAtLaunch) static_cast<NSWindow&>(*objects_[i]).orderFront(nullptr);
    }

    Objects topLevelObjects() const {
        Objects objects;
        for (std::size_t i = 0; i < objects_.size(); ++i)
            if (file_.objects[i].role == nib::Object::Role::topLevel) objects.push_back(objects_[i]);
        return objects;
    }

private:
    // Subviews have their frames before a window resizes its content.
    void assemble(nib::Object::Role role) const {
        for (std::size_t i = 0; i < objects_.size(); ++i) {
            if (file_.objects[i].role != role) continue;
            put(objects_[i], *resolve(file_.objects[i].parent), file_.objects[i]);
        }
    }
    void put(const std::shared_ptr<NSObject>& object, NSObject& parent, const nib::Object& plan) const {
        switch (plan.role) {
        case nib::Object::Role::topLevel:
            break;
        case nib::Object::Role::subview:
            static_cast<NSView&>(parent).addSubview(std::static_pointer_cast<NSView>(object));
            break;
        case nib::Object::Role::tableColumn:
            static_cast<NSTableView&>(parent).addTableColumn(std::static_pointer_cast<NSTableColumn>(object));
            break;
        case nib::Object::Role::clipView: {
            const auto clip = std::static_pointer_cast<NSClipView>(object);
            if (!clip->subviews().empty()) clip->setDocumentView(clip->subviews().front());
            static_cast<NSScrollView&>(parent).setContentView(clip);
            break;
        }
        case nib::Object::Role::headerView:
            if (auto* const table =
                    dynamic_cast<NSTableView*>(static_cast<NSScrollView&>(parent).documentView().get()))
                table->setHeaderView(std::static_pointer_cast<NSTableHeaderView>(object));
            else
                note_(plan.description + ": there is no table below it");
            break;
        case nib::Object::Role::contentView:
            static_cast<NSWindow&>(parent).setContentView(std::static_pointer_cast<NSView>(object));
            break;
        case nib::Object::Role::toolbar:
            static_cast<NSWindow&>(parent).setToolbar(std::static_pointer_cast<NSToolbar>(object));
            break;
        }
    }

    std::shared_ptr<NSObject> resolve(nib::Reference reference) const {
        if (reference >= 0) return objects_.at(static_cast<std::size_t>(reference));
        if (reference == nib::kOwner) return owner_;
        return reference == nib::kApplication && installedSystem() ? installedSystem()->application : nullptr;
    }

    void setAttribute(const nib::Attribute& plan) const {
        const auto object = resolve(plan.object);
        if (!object) return;
        const auto* const attribute = object->class_().findAttribute(plan.name);
        if (!attribute)
            return note_(stringWithFormat("%@: %@ has no such attribute", plan.description, object));
        try {
            if (!attribute->assign(*object, plan.value))
                note_(plan.description + ": the value is of another kind");
        } catch (const std::exception& refusal) {
            note_(stringWithFormat("%@: %@", plan.description, refusal.what()));
        }
    }
    void connectOutlet(const nib::Outlet& plan) const {
        const auto source = resolve(plan.source);
        const auto destination = resolve(plan.destination);
        if (!source || !destination) return;
        if (const auto* const outlet = source->class_().findOutlet(plan.name))
            outlet->connect(*source, destination);
        else
            note_(stringWithFormat("%@: %@ has no outlet %@", plan.description, source, plan.name));
    }
    void connectAction(const nib::Action& plan) const {
        const auto source = resolve(plan.source);
        const auto target = resolve(plan.target);
        const auto* const targetOutlet = source->class_().findOutlet("target");
        const auto* const action = source->class_().findAttribute("action");
        if (!targetOutlet || !action)
            return note_(stringWithFormat("%@: %@ sends no action", plan.description, source));
        if (target && !target->respondsToSelector(plan.selector))
            return note_(stringWithFormat("%@: %@ has no action %@", plan.description, target, plan.selector));
        targetOutlet->connect(*source, target);
        action->assign(*source, plan.selector);
    }

    const nib::File& file_;
    std::shared_ptr<NSObject> owner_;
    nib::Notes note_;
    Objects objects_;
};

} // namespace

NSNib::NSNib() = default;
NSNib::~NSNib() = default;

bool NSNib::initWithNibNamed_bundle(const std::string& name, const NSBundle* bundle) {
    for (const NSBundle* place : {bundle, static_cast<const NSBundle*>(&NSBundle::mainBundle()),
                                  static_cast<const NSBundle*>(&NSBundle::bundleForClass(classTable()))}) {
        const auto path = place ? place->pathForInterfaceFile(name) : std::nullopt;
        if (path) return initWithContentsOfFile(*path);
    }
    NSLog("There is no interface file %@.xib in any bundle", name);
    return false;
}

bool NSNib::initWithContentsOfFile(const std::filesystem::path& path) {
    path_ = path;
    try {
        std::error_code error;
        const auto size = std::filesystem::file_size(path, error);
        if (error) throw nib::Broken(error.message());
        if (size > kMaximumBytes) throw nib::Broken("too large");
        std::ifstream stream(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        file_ = std::make_unique<const nib::File>(nib::read(
            bytes, [&](const std::string& text) { NSLog("The interface file %@: %@", path.string(), text); }));
        return true;
    } catch (const nib::Broken& reason) {
        NSLog("The interface file %@ is not used: %@", path.string(), reason.what());
        return false;
    }
}

bool NSNib::instantiateWithOwner_topLevelObjects(const std::shared_ptr<NSObject>& owner,
                                                 Objects* topLevelObjects) const {
    if (!file_) return false;
    const auto held = weak_from_this().lock();
    Instance instance(*file_, owner, [this](const std::string& text) {
        NSLog("The interface file %@: %@", path_.string(), text);
    });
    try {
        instance.make();
        instance.check();
    } catch (const nib::Broken& reason) {
        NSLog("The interface file %@ is not used: %@", path_.string(), reason.what());
        return false;
    }
    instance.connect();
    if (topLevelObjects) *topLevelObjects = instance.topLevelObjects();
    instance.awake();
    instance.show();
    return true;
}

} // namespace zr
