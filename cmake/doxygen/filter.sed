# Converts the comments of a public header for Doxygen: the first comment describes the file, and the plain comments of
# the C++ headers describe the declaration after or before them.
1s|^/\*$|/** @file|
1s|^// |/// @file\n/// |
s|^\( *\)// |\1/// |
s|^\( *\)//$|\1///|
s|\([;,{]\) *// |\1 ///< |
