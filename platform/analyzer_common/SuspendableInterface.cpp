#include "analyzer_common/SuspendableInterface.h"

SuspendableInterface::~SuspendableInterface() = default;
