// GenICamFwd.h: names of the interfaces, for headers that only point at them.
#pragma once

#include <Base/GCNamespace.h>

#define GENICAM_INTERFACE struct

namespace GENICAM_NAMESPACE
{

class gcstring;
class gcstring_vector;

} // namespace GENICAM_NAMESPACE

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE IBase;
GENICAM_INTERFACE IBoolean;
GENICAM_INTERFACE ICategory;
GENICAM_INTERFACE IChunkPort;
GENICAM_INTERFACE ICommand;
GENICAM_INTERFACE IDestroy;
GENICAM_INTERFACE IDeviceInfo;
GENICAM_INTERFACE IEnumEntry;
GENICAM_INTERFACE IEnumeration;
GENICAM_INTERFACE IFloat;
GENICAM_INTERFACE IInteger;
GENICAM_INTERFACE INode;
GENICAM_INTERFACE INodeMap;
GENICAM_INTERFACE IPort;
GENICAM_INTERFACE IPortConstruct;
GENICAM_INTERFACE IPortStacked;
GENICAM_INTERFACE IRegister;
GENICAM_INTERFACE ISelector;
GENICAM_INTERFACE IString;
GENICAM_INTERFACE IUserData;
GENICAM_INTERFACE IValue;
class CLock;
class CNodeCallback;

} // namespace GENAPI_NAMESPACE
