// GCLinkage.h: export decoration. Empty: this runtime is a static library whose symbols stay inside the program or
// library that links it.
#pragma once

#define GCBASE_API
#define GCBASE_RTTI_CLASS_API
#define GENAPI_DECL
#define GENAPI_DECL_ABSTRACT
#define GENFW_DECL
#define GENFW_DECL_ABSTRACT
