// GenICam.h: includes the whole runtime.
#pragma once

#include <Base/GCBase.h>
#include <GenApi/GenApi.h>
