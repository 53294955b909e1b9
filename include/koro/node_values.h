/*
 * The numbers by which typed nodes tell about their values, and how they are to be read.
 */
#ifndef KORO_NODE_VALUES_H
#define KORO_NODE_VALUES_H

#include <stdint.h>

/* How a number is best shown; the numbers of GenApi. */
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

/* Which values between the limits a node takes; the numbers of GenApi. */
typedef int32_t KORO_NodeIncrementType;
enum KORO_NodeIncrementTypes
{
    KORO_NODE_INCREMENT_TYPE_NONE = 0,
    KORO_NODE_INCREMENT_TYPE_FIXED = 1,
    KORO_NODE_INCREMENT_TYPE_LIST = 2
};

/* How a real number is best written; the numbers of GenApi. */
typedef int32_t KORO_NodeDisplayNotation;
enum KORO_NodeDisplayNotations
{
    KORO_NODE_DISPLAY_NOTATION_AUTOMATIC = 0,
    KORO_NODE_DISPLAY_NOTATION_FIXED = 1,
    KORO_NODE_DISPLAY_NOTATION_SCIENTIFIC = 2,
    KORO_NODE_DISPLAY_NOTATION_UNDEFINED = 3
};

/* Where a read may take its value from. Any number but KORO_NODE_CACHE_POLICY_IGNORE_CACHE means the first. */
typedef int32_t KORO_NodeCachePolicy;
enum KORO_NodeCachePolicies
{
    KORO_NODE_CACHE_POLICY_USE_CACHE = 0,   /* what is remembered will do */
    KORO_NODE_CACHE_POLICY_IGNORE_CACHE = 1 /* ask the device */
};

#endif
