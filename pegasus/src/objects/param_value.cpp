// Method parameters with their values.
#include <Pegasus/Common/CIMParamValue.h>

#include <utility>

#include "objects/bodies.h"

namespace Pegasus {
namespace {

void RequireText(const String& name) {
  if (name.size() == 0) {
    throw UninitializedObjectException();
  }
}

}  // namespace

objects::ParamValueBody& CIMParamValue::Body() const { return objects::RequireBody(*this); }

CIMParamValue::CIMParamValue(String parameterName, CIMValue value, Boolean isTyped) {
  RequireText(parameterName);
  *this = objects::Access::MakeParamValueUnchecked(std::move(parameterName), std::move(value), isTyped);
}

String CIMParamValue::getParameterName() const { return Body().name; }

CIMValue CIMParamValue::getValue() const { return Body().value; }

Boolean CIMParamValue::isTyped() const { return Body().isTyped; }

void CIMParamValue::setParameterName(String& parameterName) {
  objects::ParamValueBody& body = Body();
  RequireText(parameterName);
  body.name = parameterName;
}

void CIMParamValue::setValue(CIMValue& value) { Body().value = value; }

void CIMParamValue::setIsTyped(Boolean isTyped) { Body().isTyped = isTyped; }

CIMParamValue CIMParamValue::clone() const {
  CIMParamValue copy;
  copy.body_ = internal::MakeBody<objects::ParamValueBody>(nullptr);
  *copy.body_ = Body();
  return copy;
}

Boolean CIMParamValue::isUninitialized() const { return !body_; }

CIMParamValue objects::Access::MakeParamValueUnchecked(String&& name, CIMValue&& value, Boolean isTyped) {
  CIMParamValue parameter;
  parameter.body_ = internal::MakeBody<ParamValueBody>(nullptr);
  parameter.body_->name = std::move(name);
  parameter.body_->value = std::move(value);
  parameter.body_->isTyped = isTyped;
  return parameter;
}

}  // namespace Pegasus
