/*
 * The numbers by which typed nodes describe their values and how to read them.
 */
#ifndef KORO_NODE_VALUES_H
#define KORO_NODE_VALUES_H

#include <stdint.h>

/* How a number should be displayed; the numbers are those of GenApi. */
typedef int32_t KORO_NodeRepresentation;
enum KORO_NodeRepresentations
{
    KORO_NODE_REPRESENTATION_LINEAR = 0,
    KORO_NODE_REPRESENTATION_LOGARITHMIC = 1,
    KORO_NODE_REPRESENTATION_BOOLEAN = 2,
    KORO_NODE_REPRESENTATION_PURE_NUMBER = 3,
    KORO_NODE_REPRESENTATION_HEX_NUMBER = 4,
    KORO_NODE_REPRESENTATION_IPV4_ADDRESS = 5,
    KORO_NODE_REPRESENTATION_MAC_ADDRESS = 6,
    KORO_NODE_REPRESENTATION_UNDEFINED = 7
};

/* Which values between the limits a node accepts; the numbers are those of GenApi. */
typedef int32_t KORO_NodeIncrementType;
enum KORO_NodeIncrementTypes
{
    KORO_NODE_INCREMENT_TYPE_NONE = 0,
    KORO_NODE_INCREMENT_TYPE_FIXED = 1,
    KORO_NODE_INCREMENT_TYPE_LIST = 2
};

/* How a floating-point number should be written; the numbers are those of GenApi. */
typedef int32_t KORO_NodeDisplayNotation;
enum KORO_NodeDisplayNotations
{
    KORO_NODE_DISPLAY_NOTATION_AUTOMATIC = 0,
    KORO_NODE_DISPLAY_NOTATION_FIXED = 1,
    KORO_NODE_DISPLAY_NOTATION_SCIENTIFIC = 2,
    KORO_NODE_DISPLAY_NOTATION_UNDEFINED = 3
};

/*
 * Whether a read may use a cached value. Any number except KORO_NODE_CACHE_POLICY_IGNORE_CACHE means
 * KORO_NODE_CACHE_POLICY_USE_CACHE.
 */
typedef int32_t KORO_NodeCachePolicy;
enum KORO_NodeCachePolicies
{
    KORO_NODE_CACHE_POLICY_USE_CACHE = 0,   /* a cached value may be returned */
    KORO_NODE_CACHE_POLICY_IGNORE_CACHE = 1 /* the value is read from the device */
};

#endif
