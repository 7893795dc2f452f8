#include "startup/procedure.hpp"

#include <exception>
#include <new>

#include "util/runtime_error.hpp"

namespace startup {

Failure CurrentFailure(int line) {
  try {
    throw;
  } catch (const util::RuntimeError& error) {
    return {error.Number(), error.Description(), line};
  } catch (const std::bad_alloc&) {
    const util::RuntimeError memory(util::ErrorNumber::OutOfMemory);
    return {memory.Number(), memory.Description(), line};
  } catch (const std::exception&) {
    const util::RuntimeError call(util::ErrorNumber::InvalidProcedureCall);
    return {call.Number(), call.Description(), line};
  }
}

}  // namespace startup
