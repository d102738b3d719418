// A library that is a JVM by its name and its entry point alone.
extern "C" __attribute__((visibility("default"))) int JNI_CreateJavaVM(void** jvm,
                                                                       void** environment,
                                                                       void* arguments);

int JNI_CreateJavaVM(void** /*jvm*/, void** /*environment*/, void* /*arguments*/) {
    return -1;
}
