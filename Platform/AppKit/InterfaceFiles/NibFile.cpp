// SPDX-License-Identifier: MIT
#include "NibFile.h"

#include <AppKit/NSScrollView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSToolbar.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSString.h>

#include <algorithm>
#include <array>
#include <map>
#include <pugixml.hpp>
#include <utility>

namespace zr::nib {

namespace {

constexpr std::string_view kDocumentType = "com.apple.InterfaceBuilder3.Cocoa.XIB";

// Elements that are read elsewhere or that mean nothing here. Any other is worth a note.
// A toolbar's items are its delegate's.
constexpr std::array<std::string_view, 6> kKnownElements = {
    "subviews",     "connections", "userDefinedRuntimeAttributes", "allowedToolbarItems", "defaultToolbarItems",
    "tableColumns",
};
// How a table looks is the window system's affair.
constexpr std::array<std::string_view, 24> kKnownKeys = {
    "frame",
    "autoresizingMask",
    "cell",
    "contentView",
    "contentRect",
    "styleMask",
    "minSize",
    "maxSize",
    "title",
    "identifier",
    "font",
    "textColor",
    "behavior",
    "backgroundColor",
    "screenRect",
    "canvasLocation",
    "keyEquivalent",
    "headerCell",
    "dataCell",
    "resizingMask",
    "intercellSpacing",
    "gridColor",
    "horizontalScroller",
    "verticalScroller",
};

class Reader {
public:
    explicit Reader(const Notes& note) : note_(note) {}

    File read(const pugi::xml_document& document) {
        const auto root = document.child("document");
        if (!root) throw Broken("there is no document in it");
        const std::string_view type = root.attribute("type").value();
        if (type != kDocumentType) throw Broken(stringWithFormat("a document of the type \"%@\"", type));
        collectIds(root);
        const auto objects = root.child("objects");
        if (!objects) throw Broken("there are no objects in it");
        for (const auto& child : elementsOf(objects)) readTopLevel(child);
        for (const auto& [element, object] : sources_) {
            readConnections(element, object);
            readAttributes(element, object);
        }
        return std::move(file_);
    }

private:
    static std::vector<pugi::xml_node> elementsOf(const pugi::xml_node& element) {
        std::vector<pugi::xml_node> elements;
        for (const auto& child : element.children())
            if (child.type() == pugi::node_element) elements.push_back(child);
        return elements;
    }

    // Also those of cells and of connections: no two may be the same.
    void collectIds(pugi::xml_node root) {
        struct Walker : pugi::xml_tree_walker {
            bool for_each(pugi::xml_node& element) override {
                if (element.type() != pugi::node_element) return true;
                // The walk starts below the root of the document, at 0.
                if (depth() + 2 > kMaximumDepth) throw Broken("nested too deeply");
                const auto id = element.attribute("id");
                if (!id || ids->try_emplace(id.value(), std::nullopt).second) return true;
                throw Broken(stringWithFormat("the id \"%@\" is there twice", id.value()));
            }
            std::map<std::string, std::optional<Reference>, std::less<>>* ids = nullptr;
        } walker;
        walker.ids = &ids_;
        root.traverse(walker);
    }

    void readTopLevel(const pugi::xml_node& element) {
        const std::string_view id = element.attribute("id").value();
        if (id == "-1" || id == "-2" || id == "-3") {
            const Reference reference = id == "-1" ? kFirstResponder : id == "-2" ? kOwner : kApplication;
            ids_[std::string(id)] = reference;
            sources_.emplace_back(element, reference);
            return;
        }
        readObject(element, Object::Role::topLevel, kOwner);
    }

    static const ClassTable& classNamed(const std::string& name, const pugi::xml_node& element) {
        const ClassTable* table = NSClassFromString(name);
        if (!table) throw Broken(stringWithFormat("%@: there is no class %@", describe(element), name));
        return *table;
    }

    // "textField" is for NSTextField, and so on.
    static const ClassTable& classOfElement(const pugi::xml_node& element) {
        std::string name = element.name();
        if (name == "customObject") return NSObject::classTable();
        if (name == "customView") return NSView::classTable();
        if (name[0] >= 'a' && name[0] <= 'z') name[0] = static_cast<char>(name[0] - 32);
        name.insert(0, "NS");
        return classNamed(name, element);
    }

    // Null: it depends on the element.
    static const ClassTable* classOfRole(Object::Role role) {
        switch (role) {
        case Object::Role::toolbar:
            return &NSToolbar::classTable();
        case Object::Role::tableColumn:
            return &NSTableColumn::classTable();
        case Object::Role::clipView:
            return &NSClipView::classTable();
        case Object::Role::headerView:
            return &NSTableHeaderView::classTable();
        default:
            return nullptr;
        }
    }

    static const ClassTable& classOf(const pugi::xml_node& element, Object::Role role) {
        const ClassTable& usual = classOfElement(element);
        const ClassTable& table = element.attribute("customClass")
                                      ? classNamed(element.attribute("customClass").value(), element)
                                      : usual;
        const auto isNo = [&](const ClassTable& wanted) {
            return Broken(stringWithFormat("%@: %@ is no %@", describe(element), table.name, wanted.name));
        };
        if (!table.isSubclassOf(usual)) throw isNo(usual);
        if (const ClassTable* const wanted = classOfRole(role)) {
            if (!table.isSubclassOf(*wanted)) throw isNo(*wanted);
            return table;
        }
        if (role != Object::Role::topLevel || std::string_view(element.name()) != "customObject") {
            const bool isWindow = role == Object::Role::topLevel && table.isSubclassOf(NSWindow::classTable());
            if (!isWindow && !table.isSubclassOf(NSView::classTable())) throw isNo(NSView::classTable());
        }
        return table;
    }

    void readObject(const pugi::xml_node& element, Object::Role role, Reference parent) {
        Object object;
        object.description = describe(element);
        object.table = &classOf(element, role);
        object.role = role;
        object.parent = parent;
        const bool isCustomObject = std::string_view(element.name()) == "customObject";
        const bool isWindow = !isCustomObject && object.table->isSubclassOf(NSWindow::classTable());
        const bool isView = !isCustomObject && object.table->isSubclassOf(NSView::classTable());
        const bool isScrollView = isView && object.table->isSubclassOf(NSScrollView::classTable());
        const bool isTable = isView && object.table->isSubclassOf(NSTableView::classTable());
        if (!isCustomObject) object.archive.emplace(element, note_);
        object.visibleAtLaunch =
            isWindow && (!element.attribute("visibleAtLaunch") || flagOf(element, "visibleAtLaunch"));
        const auto reference = static_cast<Reference>(file_.objects.size());
        if (const auto id = element.attribute("id")) ids_[id.value()] = reference;
        sources_.emplace_back(element, reference);
        file_.objects.push_back(std::move(object));

        struct Part {
            bool mayHave;
            std::string_view key;
            Object::Role role;
            const char* name;
            bool has = false;
        };
        std::array<Part, 4> parts = {{
            {isWindow, "contentView", Object::Role::contentView, "content view"},
            {isWindow, "toolbar", Object::Role::toolbar, "toolbar"},
            {isScrollView, "contentView", Object::Role::clipView, "clip view"},
            {isScrollView, "headerView", Object::Role::headerView, "header"},
        }};
        for (const auto& child : elementsOf(element)) {
            const std::string_view name = child.name(), key = child.attribute("key").value();
            const auto part =
                std::ranges::find_if(parts, [&](const Part& each) { return each.mayHave && each.key == key; });
            if (isView && name == "subviews") {
                for (const auto& view : elementsOf(child)) readObject(view, Object::Role::subview, reference);
            } else if (isTable && name == "tableColumns") {
                for (const auto& column : elementsOf(child))
                    readObject(column, Object::Role::tableColumn, reference);
            } else if (part != parts.end()) {
                if (std::exchange(part->has, true))
                    throw Broken(stringWithFormat("%@: a second %s", describe(child), part->name));
                readObject(child, part->role, reference);
            } else {
                noteUnread(child);
            }
        }
    }

    void noteUnread(const pugi::xml_node& element) {
        const std::string_view key = element.attribute("key").value();
        const bool known = std::ranges::find(kKnownElements, element.name()) != kKnownElements.end() ||
                           std::ranges::find(kKnownKeys, key) != kKnownKeys.end();
        if (!known) note_(describe(element) + " is not read");
        if (key != "cell") return;
        if (element.attribute("customClass")) note_(describe(element) + ": the class of a cell is not read");
        for (const auto& child : elementsOf(element)) noteUnread(child);
    }

    // Where a connection leads.
    Reference objectNamed(const pugi::xml_node& connection, const char* attribute) const {
        const std::string_view id = connection.attribute(attribute).value();
        const auto found = ids_.find(id);
        if (found == ids_.end())
            throw Broken(stringWithFormat("%@ leads to \"%@\", which is not there", describe(connection), id));
        if (!found->second)
            throw Broken(
                stringWithFormat("%@ leads to \"%@\", of which no object is made", describe(connection), id));
        return *found->second;
    }

    static std::string nameIn(const pugi::xml_node& connection, const char* attribute) {
        std::string name = connection.attribute(attribute).value();
        if (name.empty()) throw Broken(stringWithFormat("%@ has no %@", describe(connection), attribute));
        return name;
    }

    void readConnections(const pugi::xml_node& element, Reference object) {
        for (const auto& connection : elementsOf(element.child("connections"))) {
            const std::string_view kind = connection.name();
            std::string description = describe(connection);
            if (kind == "outlet") {
                auto name = nameIn(connection, "property");
                const Reference destination = objectNamed(connection, "destination");
                if (object == kFirstResponder || destination == kFirstResponder)
                    throw Broken(description + ": the first responder has and takes no outlets");
                file_.outlets.push_back({std::move(description), object, std::move(name), destination});
            } else if (kind == "action") {
                auto selector = nameIn(connection, "selector");
                const Reference target = objectNamed(connection, "target");
                if (object < 0) throw Broken(description + ": not of a control");
                file_.actions.push_back({std::move(description), object, std::move(selector), target});
            } else {
                note_(description + " is not read");
            }
        }
    }

    std::optional<RuntimeValue> runtimeValue(const pugi::xml_node& attribute) {
        const std::string_view type = attribute.attribute("type").value();
        const auto child = attribute.find_child_by_attribute("key", "value");
        if (type == "boolean") return flagOf(attribute, "value");
        if (type == "string")
            return child ? contentsOf(child) : std::string(attribute.attribute("value").value());
        if (type == "number") return numberOf(child, "value");
        if (type == "point") return pointOf(child);
        if (type == "color") {
            const auto colour = colourOf(child, note_);
            return colour ? std::optional<RuntimeValue>(*colour) : std::nullopt;
        }
        note_(stringWithFormat("%@: a value of the type \"%@\" is not read", describe(attribute), type));
        return std::nullopt;
    }

    void readAttributes(const pugi::xml_node& element, Reference object) {
        for (const auto& attribute : elementsOf(element.child("userDefinedRuntimeAttributes"))) {
            auto name = nameIn(attribute, "keyPath");
            std::string description = stringWithFormat("attribute %@ of %@", name, describe(element));
            auto value = runtimeValue(attribute);
            if (object == kFirstResponder) throw Broken(description + ": the first responder has none");
            if (value)
                file_.attributes.push_back(
                    {std::move(description), object, std::move(name), *std::move(value)});
        }
    }

    const Notes& note_;
    File file_;
    std::map<std::string, std::optional<Reference>, std::less<>> ids_; // nothing: no object
    std::vector<std::pair<pugi::xml_node, Reference>> sources_;
};

} // namespace

File read(std::string_view bytes, const Notes& note) {
    pugi::xml_document document;
    const auto parsed =
        document.load_buffer(bytes.data(), bytes.size(), pugi::parse_default | pugi::parse_ws_pcdata_single);
    if (!parsed) throw Broken(stringWithFormat("not XML: %@, at byte %d", parsed.description(), parsed.offset));
    return Reader(note).read(document);
}

} // namespace zr::nib
