#include <string>

#include "launcher.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "ui/terminal/terminal_screen.hpp"

int main(int argc, char** argv) {
  return 0;
}
