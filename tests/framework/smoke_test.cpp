#include <gtest/gtest.h>

#include "CPWhitespaceFilter.h"
#include "support/TestLexer.h"

TEST(Smoke, Builds) {
    TestLexer* lexer = new TestLexer(testText("a b"));
    lexer->addRef();
    EXPECT_NE(lexer->currentToken(), nullptr);
    lexer->release();
}
