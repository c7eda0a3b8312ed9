// SPDX-License-Identifier: MIT
// Compiles as it is, and with no ZR_WRONG_ definition.
#include <Foundation/NSObject.h>

#include <string>

namespace zr {

class Shape : public NSObject {
public:
    ZR_CLASS(Shape, NSObject)
    void turn(NSObject*) {}
    void setNext(const std::shared_ptr<NSObject>&) {}
    void setTitle(const std::string&) {}
};

class Sound : public NSObject {
public:
    ZR_CLASS(Sound, NSObject)
    void play(NSObject*) {}
    void setNext(const std::shared_ptr<NSObject>&) {}
    void setTitle(const std::string&) {}
};

class Circle : public Shape {
public:
#ifdef ZR_WRONG_SUPERCLASS
    ZR_CLASS(Circle, Sound)
#else
    ZR_CLASS(Circle, Shape)
#endif
};

#if defined(ZR_WRONG_ACTION)
ZR_CLASS_TABLE(Circle, .actions = {actionNamed<&Circle::turn>("turn:"), actionNamed<&Sound::play>("play:")})
#elif defined(ZR_WRONG_OUTLET)
ZR_CLASS_TABLE(Circle,
               .outlets = {outletNamed<&Circle::setNext>("next"), outletNamed<&Sound::setNext>("after")})
#elif defined(ZR_WRONG_ATTRIBUTE)
ZR_CLASS_TABLE(Circle, .attributes = {attributeNamed<&Sound::setTitle>("title")})
#elif defined(ZR_WRONG_SUPERCLASS)
ZR_CLASS_TABLE(Circle)
#else
ZR_CLASS_TABLE(Circle, .actions = {actionNamed<&Circle::turn>("turn:")},
               .outlets = {outletNamed<&Shape::setNext>("next")},
               .attributes = {attributeNamed<&Circle::setTitle>("title")})
#endif

} // namespace zr
