// Compiles the parse cache over the engine's node types once, so every member is checked.
#include "CPParseNodeType.h"
#include "TBPParseCache.h"

template class TBPParseCache<CPParseNodeType>;
