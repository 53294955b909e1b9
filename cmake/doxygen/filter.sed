# Makes the comments of a public header such that Doxygen reads them: the first comment describes the file, and the
# plain comments of the C++ headers belong to the declaration below or before them.
1s|^/\*$|/** @file|
1s|^// |/// @file\n/// |
s|^\( *\)// |\1/// |
s|^\( *\)//$|\1///|
s|\([;,{]\) *// |\1 ///< |
