// libFuzzer entry point; the harness is fuzz::tables (Harnesses.h).
#include "Harnesses.h"

#include <QCoreApplication>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  static int argc = 1;
  static char name[] = "fuzz";
  static char* argv[] = { name, nullptr };
  static QCoreApplication application(argc, argv);
  fuzz::tables(data, size);
  return 0;
}
