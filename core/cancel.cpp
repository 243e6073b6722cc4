#include "core/cancel.h"

namespace orv {

ChunkHook chunkHook = nullptr;
namespace {
void* chunkHookContext = nullptr;
}

void setChunkHook(ChunkHook hook, void* context) {
    chunkHook = hook;
    chunkHookContext = context;
}

void callChunkHook(std::int32_t pos, std::int32_t end) {
    if (chunkHook) chunkHook(chunkHookContext, pos, end);
}

}  // namespace orv
