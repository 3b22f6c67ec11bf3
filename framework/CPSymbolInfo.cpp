#include "CPSymbolInfo.h"

using quernbase::QBString;

namespace {

// "(arguments)" of a function type, then its qualifiers.
int appendSignature(QBString& out, const CPSymbolInfo::TypeInfo& function,
                    const CPSymbolInfo::TypeInfo& qualified) {
    out += "(";
    if (const CPSymbolInfo::TypeInfo* arguments = function.getArguments())
        if (int rc = arguments->getText(out, false, false)) return rc;
    out += ")";
    if (qualified.isConst()) out += " const";
    if (qualified.isVolatile()) out += " volatile";
    return out.isNull() ? qbmsg::OutOfMemory : 0;
}

}  // namespace

int CPSymbolInfo::getDisplayName(QBString& out) const {
    if (int rc = out.set(name)) return rc;
    const TypeInfo* type = getType();
    if (!type) return 0;
    const TypeInfo* t = type->resolved();
    switch (t->getRawKind()) {
    case BPTYPE_Class:
    case BPTYPE_TemplateDeclaration: return t->getTemplateText(out);
    case BPTYPE_Function: {
        if (int rc = t->getTemplateText(out)) return rc;
        return appendSignature(out, *t, *type);
    }
    case BPTYPE_TemplateID: {
        QBString text("");
        if (int rc = t->getText(text, true, false)) return rc;
        return out.set(text);
    }
    default: return 0;
    }
}
