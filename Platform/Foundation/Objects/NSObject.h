// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/ClassTable.h>

#include <memory>
#include <utility>

namespace zr {

// Root of every class of the layer and the kit. Objects are made by zr::make and by nothing else, are shared,
// and live as long as somebody holds them.
//
// make<T>(...) constructs the object and then runs an initialiser, in which virtual calls and
// shared_from_this() work. An initialiser that answers false makes make() answer null. When the last reference
// goes, dealloc() runs first, as the class that was made, with all weak references to the object already null;
// then the destructors run.
class ZR_EXPORT NSObject : public std::enable_shared_from_this<NSObject> {
public:
    NSObject(const NSObject&) = delete;
    NSObject& operator=(const NSObject&) = delete;

    static const ClassTable& classTable();
    virtual const ClassTable& class_() const { return classTable(); }

    virtual bool init() { return true; }
    // Last chance to use the object whole. Overrides call their superclass's at the end. Must not throw.
    virtual void dealloc() {}
    // Sent once when an interface file has been opened and everything in it is connected: to each object that
    // it made, then to its owner.
    virtual void awakeFromNib() {}

    bool isKindOfClass(const ClassTable& table) const { return class_().isSubclassOf(table); }
    // Whether the class has an action of that name.
    bool respondsToSelector(const SEL& selector) const { return class_().findAction(selector) != nullptr; }
    // False when the object does not respond to the selector.
    bool performSelector_withObject(const SEL& selector, NSObject* sender);

protected:
    NSObject() = default;
    virtual ~NSObject() = default;

private:
    virtual void onlyMakeMakesObjects() const = 0;
    template <class T>
    friend struct Made;
};

// What make() really makes: the class, completed.
template <class T>
struct Made final : T {
    ~Made() override { this->dealloc(); }

private:
    void onlyMakeMakesObjects() const override {}
};

// In one piece with its counter an object's memory would stay as long as a weak reference, and the address
// sanitizer would see nothing wrong in the use of an object that has gone.
#if defined(__SANITIZE_ADDRESS__)
#define ZR_COUNTER_APART 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZR_COUNTER_APART 1
#endif
#endif

namespace detail {
template <class T>
std::shared_ptr<Made<T>> constructed() {
#ifdef ZR_COUNTER_APART
    return std::shared_ptr<Made<T>>(new Made<T>());
#else
    return std::make_shared<Made<T>>();
#endif
}
} // namespace detail

#undef ZR_COUNTER_APART

// make<NSImage>(&NSImage::initWithSize, size)
template <class T, class Base, class... Parameters, class... Arguments>
std::shared_ptr<T> make(bool (Base::*initialiser)(Parameters...), Arguments&&... arguments) {
    static_assert(std::is_base_of_v<Base, T>,
                  "make: the initialiser is one of a class from which the object's does not derive");
    auto object = detail::constructed<T>();
    if (!(static_cast<Base&>(*object).*initialiser)(std::forward<Arguments>(arguments)...)) return nullptr;
    return object;
}

template <class T>
std::shared_ptr<T> make() {
    return make<T>(&T::init);
}

template <class T>
std::shared_ptr<T> make(const NSRect& frame) {
    return make<T>(&T::initWithFrame, frame);
}

template <class T>
std::shared_ptr<T> make(NSCoder& coder) {
    return make<T>(&T::initWithCoder, coder);
}

// The object as the shared pointer that holds it; null while it is being destroyed.
template <class T>
std::shared_ptr<T> retained(T* object) {
    return object ? std::static_pointer_cast<T>(object->weak_from_this().lock()) : nullptr;
}

namespace detail {
template <class T>
std::shared_ptr<NSObject> makeByTable(NSCoder* coder) {
    if constexpr (requires(T & object, NSCoder & from) { object.initWithCoder(from); }) {
        if (coder) return make<T>(*coder);
    }
    return make<T>();
}
} // namespace detail

// Stands in the public part of a class and declares its table, which its source file defines with
// ZR_CLASS_TABLE.
#define ZR_CLASS(Class, Superclass)                                                                            \
    using Self = Class;                                                                                        \
    using Super = Superclass;                                                                                  \
    static const ::zr::ClassTable& classTable();                                                               \
    const ::zr::ClassTable& class_() const override { return classTable(); }

// ZR_CLASS_TABLE(SplitSliderView) or ZR_CLASS_TABLE(Pane, .actions = {...}, .outlets = {...}, .attributes =
// {...}). Each entry names a method of the class or of one that it derives from; others do not compile.
#define ZR_CLASS_TABLE(Class, ...)                                                                             \
    const ::zr::ClassTable& Class::classTable() {                                                              \
        static const ::zr::ClassTable table =                                                                  \
            ::zr::detail::TableOf<Class, Super>{                                                               \
                .name = #Class, .make = &::zr::detail::makeByTable<Class> __VA_OPT__(, ) __VA_ARGS__}          \
                .table();                                                                                      \
        return table;                                                                                          \
    }

} // namespace zr
