#include "serialize/SerializerInterface.h"

SerializerInterface::~SerializerInterface() = default;
