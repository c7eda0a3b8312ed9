// SPDX-License-Identifier: MIT
#include <Foundation/ClassTable.h>

#include <algorithm>
#include <stdexcept>

namespace zr {

namespace {

template <class Entry>
const Entry* findEntry(const ClassTable& table, std::vector<Entry> ClassTable::*entries,
                       std::string_view Entry::*key, std::string_view name) {
    for (const ClassTable* current = &table; current; current = current->superclass) {
        const auto& list = current->*entries;
        const auto found = std::ranges::find(list, name, key);
        if (found != list.end()) return &*found;
    }
    return nullptr;
}

// Leaked on purpose, as the tables are.
std::vector<const ClassTable*>& applicationClasses() {
    static auto* const tables = new std::vector<const ClassTable*>;
    return *tables;
}

} // namespace

bool ClassTable::isSubclassOf(const ClassTable& other) const {
    for (const ClassTable* current = this; current; current = current->superclass)
        if (current == &other) return true;
    return false;
}

const Action* ClassTable::findAction(std::string_view selector) const {
    return findEntry(*this, &ClassTable::actions, &Action::selector, selector);
}

const Outlet* ClassTable::findOutlet(std::string_view outletName) const {
    return findEntry(*this, &ClassTable::outlets, &Outlet::name, outletName);
}

const Attribute* ClassTable::findAttribute(std::string_view attributeName) const {
    return findEntry(*this, &ClassTable::attributes, &Attribute::name, attributeName);
}

void registerClass(const ClassTable& table) {
    const ClassTable* const known = NSClassFromString(table.name);
    if (known && known != &table) {
        std::string message = "there is a class already of the name ";
        message += table.name;
        throw std::logic_error(message);
    }
    if (!known) applicationClasses().push_back(&table);
}

const ClassTable* NSClassFromString(std::string_view name) {
    const auto find = [name](const auto& tables) -> const ClassTable* {
        const auto found = std::ranges::find(tables, name, &ClassTable::name);
        return found == tables.end() ? nullptr : *found;
    };
    const ClassTable* const kit = find(kitClassTables());
    return kit ? kit : find(applicationClasses());
}

} // namespace zr
