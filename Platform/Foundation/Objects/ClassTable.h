// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Colour.h>
#include <Base/Compiler.h>
#include <Base/Geometry.h>

#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>
#include <vector>

namespace zr {

class NSCoder;
class NSObject;

// The name of an action, as it is written in interface files: "saveTrimmed:".
using SEL = std::string;

// A value given to an object by name. Colours are for attributes whose type can be made of a Colour.
using RuntimeValue = std::variant<std::string, double, bool, NSPoint, Colour>;

struct Action {
    std::string_view selector;
    void (*perform)(NSObject& receiver, NSObject* sender);
};

struct Outlet {
    std::string_view name;
    bool (*connect)(NSObject& owner,
                    const std::shared_ptr<NSObject>& value); // false when it is of another kind
    bool (*accepts)(const std::shared_ptr<NSObject>& value); // whether connect would take it
};

struct Attribute {
    std::string_view name;
    bool (*assign)(NSObject& object, const RuntimeValue& value); // false when it is of another kind
};

// What is known of a class at run time, by the original names. Each class has one, beside its source; look-ups
// go on in the superclass.
struct ZR_EXPORT ClassTable {
    std::string_view name;
    const ClassTable* superclass = nullptr;
    std::shared_ptr<NSObject> (*make)(NSCoder* coder) =
        nullptr; // by initWithCoder where there is a coder, else by init
    std::vector<Action> actions{};
    std::vector<Outlet> outlets{};
    std::vector<Attribute> attributes{};

    bool isSubclassOf(const ClassTable& other) const;
    const Action* findAction(std::string_view selector) const;
    const Outlet* findOutlet(std::string_view outletName) const;
    const Attribute* findAttribute(std::string_view attributeName) const;
};

// All classes of the kit and of the layer below it; the list stands beside the kit's classes.
ZR_EXPORT std::span<const ClassTable* const> kitClassTables();

// Adds a class of the application to those that are known by name, so that its interface files may use it. Main
// thread only. Throws std::logic_error when another class has the name.
ZR_EXPORT void registerClass(const ClassTable& table);

// Null when there is no class of that name.
ZR_EXPORT const ClassTable* NSClassFromString(std::string_view name);

namespace detail {

// An entry, and the class whose method it names.
template <class Entry, class Owner>
struct EntryOf : Entry {};

// An entry of the table of a class.
template <class Entry, class Class>
struct EntryFor : Entry {
    template <class Owner>
    EntryFor(const EntryOf<Entry, Owner>& entry) : Entry(entry) {
        static_assert(std::is_base_of_v<Owner, Class>,
                      "a class table names a method of a class from which its own does not derive");
    }
};

// What ZR_CLASS_TABLE writes: a ClassTable whose entries are looked at by the compiler.
template <class Class, class Superclass>
struct TableOf {
    static_assert(std::is_base_of_v<Superclass, Class>,
                  "a class table names a superclass from which its class does not derive");
    std::string_view name;
    std::shared_ptr<NSObject> (*make)(NSCoder* coder) = nullptr;
    std::vector<EntryFor<Action, Class>> actions{};
    std::vector<EntryFor<Outlet, Class>> outlets{};
    std::vector<EntryFor<Attribute, Class>> attributes{};

    ClassTable table() const {
        return {name,
                &Superclass::classTable(),
                make,
                {actions.begin(), actions.end()},
                {outlets.begin(), outlets.end()},
                {attributes.begin(), attributes.end()}};
    }
};

template <class Member>
struct SetterOf;
template <class T, class Result, class Value>
struct SetterOf<Result (T::*)(Value)> {
    using Owner = T;
    using Argument = std::remove_cvref_t<Value>;
};

template <class Argument>
const auto* attributeValue(const RuntimeValue& value) {
    if constexpr (std::is_same_v<Argument, bool>)
        return std::get_if<bool>(&value);
    else if constexpr (std::is_arithmetic_v<Argument>)
        return std::get_if<double>(&value);
    else if constexpr (std::is_same_v<Argument, NSPoint>)
        return std::get_if<NSPoint>(&value);
    else if constexpr (std::is_constructible_v<Argument, Colour>)
        return std::get_if<Colour>(&value);
    else
        return std::get_if<std::string>(&value);
}

// Whole numbers saturate; what is no number is 0.
template <class Number>
Number narrowed(double value) {
    if constexpr (std::is_floating_point_v<Number>) {
        return static_cast<Number>(value);
    } else {
        // One more than the greatest is a power of two, and so exact.
        constexpr Number half = std::numeric_limits<Number>::max() / 2 + 1;
        constexpr double end = 2.0 * static_cast<double>(half);
        constexpr auto least = static_cast<double>(std::numeric_limits<Number>::min());
        if (value != value) return 0;
        if (value >= end) return std::numeric_limits<Number>::max();
        if (value <= least) return std::numeric_limits<Number>::min();
        return static_cast<Number>(value);
    }
}

} // namespace detail

// actionNamed<&Pane::addFolderDown>("addFolderDown:")
template <auto Method>
auto actionNamed(std::string_view selector) {
    using Traits = detail::SetterOf<decltype(Method)>;
    using Owner = typename Traits::Owner;
    static_assert(std::is_same_v<typename Traits::Argument, NSObject*>, "an action takes its sender");
    return detail::EntryOf<Action, Owner>{{selector, [](NSObject& receiver, NSObject* sender) {
                                               (static_cast<Owner&>(receiver).*Method)(sender);
                                           }}};
}

// outletNamed<&BaseSliderView::setDelegate>("delegate")
template <auto Setter>
auto outletNamed(std::string_view name) {
    using Traits = detail::SetterOf<decltype(Setter)>;
    using Owner = typename Traits::Owner;
    using Kind = typename Traits::Argument::element_type;
    return detail::EntryOf<Outlet, Owner>{{name,
                                           [](NSObject& owner, const std::shared_ptr<NSObject>& value) {
                                               auto object = std::dynamic_pointer_cast<Kind>(value);
                                               if (value && !object) return false;
                                               (static_cast<Owner&>(owner).*Setter)(object);
                                               return true;
                                           },
                                           [](const std::shared_ptr<NSObject>& value) {
                                               return !value ||
                                                      std::dynamic_pointer_cast<Kind>(value) != nullptr;
                                           }}};
}

// attributeNamed<&BaseSliderView::setSliderXOffset>("sliderXOffset")
template <auto Setter>
auto attributeNamed(std::string_view name) {
    using Traits = detail::SetterOf<decltype(Setter)>;
    using Owner = typename Traits::Owner;
    using Argument = typename Traits::Argument;
    return detail::EntryOf<Attribute, Owner>{{name, [](NSObject& object, const RuntimeValue& value) {
                                                  const auto* given = detail::attributeValue<Argument>(value);
                                                  if (!given) return false;
                                                  auto& owner = static_cast<Owner&>(object);
                                                  if constexpr (std::is_arithmetic_v<Argument> &&
                                                                !std::is_same_v<Argument, bool>)
                                                      (owner.*Setter)(detail::narrowed<Argument>(*given));
                                                  else
                                                      (owner.*Setter)(static_cast<Argument>(*given));
                                                  return true;
                                              }}};
}

} // namespace zr
