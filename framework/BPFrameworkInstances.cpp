// The framework's templates over the engine's node-type enumeration, compiled once here so
// that every member is checked even before a language layer uses it.
#include "CPParseNodeType.h"
#include "TBPErrorLog.h"
#include "TBPLexer.h"
#include "TBPParseTree.h"
#include "TBPSymbolTable.h"
#include "TBPTokenSource.h"
#include "TBPTypeInfo.h"
#include "TBPValue.h"

template struct TBPErrorInfo<CPParseNodeType>;
template class TBPErrorLog<CPParseNodeType>;
template class TBPParseNode<CPParseNodeType>;
template class TBPToken<CPParseNodeType>;
template class TBPParseTree<CPParseNodeType>;
template class TBPTokenQueue<CPParseNodeType>;
template struct TBPTransaction<CPParseNodeType>;
template class TBPTokenSource<CPParseNodeType>;
template class TBPTokenFilter<CPParseNodeType>;
template class TBPArrayTokenSource<CPParseNodeType>;
template class TBPTreeTokenSource<CPParseNodeType>;
template class TBPLexer<CPParseNodeType>;
template class TBPSymbolInfo<CPParseNodeType>;
template class TBPSymbolTable<CPParseNodeType>;
template class TBPTypeInfo<CPParseNodeType, CPSimpleTypeName>;
template class TBPValue<CPParseNodeType>;
