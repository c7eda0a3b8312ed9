// SPDX-License-Identifier: MIT
#pragma once

#include "NibArchive.h"

#include <Foundation/ClassTable.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What is to be made of an interface file, found out before anything is made. Private to AppKit.
namespace zr::nib {

// An object of the file, by its place in the list; or one that is there already, by the id it has in every
// file.
using Reference = int;
inline constexpr Reference kFirstResponder = -1;
inline constexpr Reference kOwner = -2;
inline constexpr Reference kApplication = -3;

struct Object {
    // A clip view and a header are a scroll view's, columns a table's.
    enum class Role { topLevel, subview, tableColumn, clipView, headerView, contentView, toolbar };
    std::string description;
    const ClassTable* table = nullptr;
    std::optional<Archive> archive; // none: made by init
    Role role = Role::topLevel;
    Reference parent = kOwner; // of all but the top level
    bool visibleAtLaunch = false;
};

struct Outlet {
    std::string description;
    Reference source;
    std::string name;
    Reference destination;
};

struct Action {
    std::string description;
    Reference source;
    std::string selector;
    Reference target;
};

struct Attribute {
    std::string description;
    Reference object;
    std::string name;
    RuntimeValue value;
};

// Each list in the order of the file; superviews come before their subviews.
struct File {
    std::vector<Object> objects;
    std::vector<Outlet> outlets;
    std::vector<Action> actions;
    std::vector<Attribute> attributes;
};

// The deepest nesting that is read.
inline constexpr int kMaximumDepth = 256;

// Throws Broken.
File read(std::string_view bytes, const Notes& note);

} // namespace zr::nib
