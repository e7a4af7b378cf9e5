#include <cstdlib>
#include <string>

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace {

const char library[] = "libOvMemCppBinding.so.0";

bool isLoaded(const char* file) {
    void* const loaded = ::dlopen(file, RTLD_NOW | RTLD_NOLOAD);
    if (loaded != nullptr) {
        ::dlclose(loaded);
    }
    return loaded != nullptr;
}

// Loads the plug-in, and with it the library, uses both and lets them go.
std::string shareAnEvent(bool guarded) {
    void* const plugin = ::dlopen(OVMEM_PLUGIN, RTLD_NOW | RTLD_LOCAL);
    if (plugin == nullptr) {
        return ::dlerror();
    }
    using Function = const char* (*)(bool);
    const auto function =
        reinterpret_cast<Function>(::dlsym(plugin, "shareAnEvent"));
    EXPECT_TRUE(isLoaded(OVMEM_PLUGIN));
    EXPECT_TRUE(isLoaded(library));
    const std::string result =
        function == nullptr ? ::dlerror() : function(guarded);
    ::dlclose(plugin);
    return result;
}

// The platform's own libraries are the process's.
void stay(const char* file) {
    ASSERT_NE(::dlopen(file, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE), nullptr)
        << ::dlerror();
}

}  // namespace

TEST(Loading, TheLibraryMayBeLoadedAndUnloadedAgainAndAgain) {
    ::setenv("OVMEM_STORE", "memory:", 1);
    stay(OVMEM_TRANSPORT);
    stay(OVMEM_LOGGING);
    for (int time = 0; time < 50; ++time) {
        for (const bool guarded : {false, true}) {
            EXPECT_EQ(shareAnEvent(guarded), "valve sees pump, pump got open");
            EXPECT_FALSE(isLoaded(OVMEM_PLUGIN));
            ASSERT_FALSE(isLoaded(library)) << time;
        }
    }
}
