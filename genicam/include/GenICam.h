// GenICam.h: the whole runtime as one include.
#pragma once

#include <Base/GCBase.h>
#include <GenApi/GenApi.h>
