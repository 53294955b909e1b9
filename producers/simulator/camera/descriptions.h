// The descriptions of descriptions/*.xml, embedded at build time.
#pragma once

#include "producers/kit/description.h"
#include "producers/simulator/kit.h"

namespace koro::simulator
{

// Of the local modules.
extern const Description systemDescription;
extern const Description interfaceDescription;
extern const Description deviceDescription;
extern const Description streamDescription;

// Of cameras, by transport; the same zipped.
extern const Description gevDescription;
extern const Description gevArchiveDescription;
extern const Description u3vDescription;
extern const Description u3vArchiveDescription;
extern const Description clDescription;
extern const Description clArchiveDescription;
extern const Description plainDescription;
extern const Description plainArchiveDescription;
extern const Description iidcDescription;
extern const Description iidcArchiveDescription;

} // namespace koro::simulator
