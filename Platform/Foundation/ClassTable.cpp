#include <Foundation/ClassTable.h>

#include <algorithm>

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

const ClassTable* NSClassFromString(std::string_view name) {
    for (const ClassTable* table : kitClassTables())
        if (table->name == name) return table;
    return nullptr;
}

} // namespace zr
