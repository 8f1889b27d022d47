// The texts of exceptions of any kind.
#include "cmm/inventory_update/cmm_exceptions.h"

#include <Pegasus/Common/Exception.h>

#include <exception>

#include "cmm/inventory_update/cmm_util.h"

namespace Orvane {

std::string CurrentExceptionText() {
  try {
    throw;
  } catch (const Pegasus::Exception& error) {
    return ToStdString(error.getMessage());
  } catch (const std::exception& error) {
    return error.what();
  } catch (...) {
    return "exception of an unknown type";
  }
}

}  // namespace Orvane
