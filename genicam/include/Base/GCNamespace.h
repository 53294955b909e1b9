// GCNamespace.h: the two versioned namespaces and their plain aliases.
//
// Code uses GENICAM_NAMESPACE and GENAPI_NAMESPACE, or the aliases GenICam and GenApi. If the build defines
// GENICAM_COMPANY_SUFFIX, it becomes the last part of both names: a process may contain several copies of such a
// runtime, and exceptions are caught by the name of their type.
#pragma once

#include <GenICamVersion.h>

#define GENICAM_JOIN3_(a, b, c) a##_##b##_##c
#define GENICAM_JOIN4_(a, b, c, d) a##_##b##_##c##_##d
#define GENICAM_JOIN3(a, b, c) GENICAM_JOIN3_(a, b, c)
#define GENICAM_JOIN4(a, b, c, d) GENICAM_JOIN4_(a, b, c, d)

#ifdef GENICAM_COMPANY_SUFFIX
#define GENICAM_VERSIONED(prefix)                                                                                      \
    GENICAM_JOIN4(prefix, GENICAM_VERSION_MAJOR, GENICAM_VERSION_MINOR, GENICAM_COMPANY_SUFFIX)
#else
#define GENICAM_VERSIONED(prefix) GENICAM_JOIN3(prefix, GENICAM_VERSION_MAJOR, GENICAM_VERSION_MINOR)
#endif

#ifndef GENICAM_NAMESPACE_DEFINED
#define GENICAM_NAMESPACE_DEFINED
#define GENICAM_NAMESPACE GENICAM_VERSIONED(GenICam)
#endif

#ifndef GENAPI_NAMESPACE_DEFINED
#define GENAPI_NAMESPACE_DEFINED
#define GENAPI_NAMESPACE GENICAM_VERSIONED(GenApi)
#endif

namespace GENICAM_NAMESPACE
{}
namespace GENAPI_NAMESPACE
{}

#ifndef GENICAM_SUPPRESS_NAMESPACE_ALIAS
namespace GenICam = GENICAM_NAMESPACE;
namespace GenApi = GENAPI_NAMESPACE;
#endif
