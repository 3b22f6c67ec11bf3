#!/usr/bin/env bash
# Builds the lexer's fuzz target with clang's libFuzzer and runs it for a while (default 60 s).
# Crashes and their inputs land in build/fuzz/; the corpus grows in build/fuzz/corpus.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
out=build/fuzz
mkdir -p "$out/corpus"
srcs=(foundation/*.cpp framework/*.cpp lexer/*.cpp tests/fuzz/CPLexer_fuzzer.cpp)
incs=(-Ifoundation -Iframework -Ilexer -Iqbapi/include)
clang++ -std=c++17 -g -O1 -fsanitize=fuzzer,address,undefined "${incs[@]}" "${srcs[@]}" \
        -o "$out/lexer_fuzzer"
# Seeds: a few of our own sources.
cp -n lexer/CPScanner.cpp tests/lexer/CPScanner_test.cpp "$out/corpus/" 2>/dev/null || true
cd "$out" && ./lexer_fuzzer -max_total_time="$seconds" -max_len=4096 corpus
