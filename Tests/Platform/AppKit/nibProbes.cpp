#include "NibTest.h"

namespace zr::test {

namespace {

class NSProgressIndicator : public NSView {
public:
    ZR_CLASS(NSProgressIndicator, NSView)
};
ZR_CLASS_TABLE(NSProgressIndicator)

class NSImageView : public NSControl {
public:
    ZR_CLASS(NSImageView, NSControl)
};
ZR_CLASS_TABLE(NSImageView)

} // namespace

ZR_CLASS_TABLE(NibOwner, .actions = {actionNamed<&NibOwner::press>("press:")},
               .outlets = {outletNamed<&NibOwner::setWindow>("window"), outletNamed<&NibOwner::setView>("view"),
                           outletNamed<&NibOwner::setField>("field")},
               .attributes = {attributeNamed<&NibOwner::setName>("name")})

ZR_CLASS_TABLE(
    NibProbe,
    .outlets = {outletNamed<&NibProbe::setPartner>("partner"), outletNamed<&NibProbe::setOwner>("owner")},
    .attributes = {attributeNamed<&NibProbe::setText>("text"), attributeNamed<&NibProbe::setNumber>("number"),
                   attributeNamed<&NibProbe::setFlag>("flag"), attributeNamed<&NibProbe::setPoint>("point"),
                   attributeNamed<&NibProbe::setColour>("colour")})

void registerTestClasses() {
    registerClass(NibProbe::classTable());
    for (const ClassTable* table : {&NSProgressIndicator::classTable(), &NSImageView::classTable()})
        if (!NSClassFromString(table->name)) registerClass(*table);
}

} // namespace zr::test
