#include "startup/procedure.hpp"

#include <exception>
#include <new>

#include "base/runtime_error.hpp"

namespace startup {

base::RuntimeError CurrentError() {
  try {
    throw;
  } catch (const base::RuntimeError& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return base::RuntimeError(base::ErrorNumber::OutOfMemory);
  } catch (const std::exception&) {
    return base::RuntimeError(base::ErrorNumber::InvalidProcedureCall);
  }
}

Failure CurrentFailure(int line) {
  const base::RuntimeError error = CurrentError();
  return {error.Number(), error.Description(), line};
}

}  // namespace startup
