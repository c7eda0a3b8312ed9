// SPDX-License-Identifier: MIT
#include "NibTest.h"

namespace zr::test {

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

void registerTestClasses() { registerClass(NibProbe::classTable()); }

} // namespace zr::test
