#include "datapipeline/DataPipelineManagerInterface.h"

DataPipelineManagerInterface::~DataPipelineManagerInterface() = default;
