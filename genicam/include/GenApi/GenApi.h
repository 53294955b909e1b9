// GenApi.h: the interfaces of GenApi as one include.
#pragma once

#include <GenApi/IBase.h>
#include <GenApi/IPort.h>
#include <GenApi/Types.h>
