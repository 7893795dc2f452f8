#include "startup/procedure.hpp"

#include <exception>
#include <new>

#include "base/runtime_error.hpp"

namespace startup {

Failure CurrentFailure(int line) {
  try {
    throw;
  } catch (const base::RuntimeError& error) {
    return {error.Number(), error.Description(), line};
  } catch (const std::bad_alloc&) {
    const base::RuntimeError memory(base::ErrorNumber::OutOfMemory);
    return {memory.Number(), memory.Description(), line};
  } catch (const std::exception&) {
    const base::RuntimeError call(base::ErrorNumber::InvalidProcedureCall);
    return {call.Number(), call.Description(), line};
  }
}

}  // namespace startup
