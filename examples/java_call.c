/*
 * A call from a runtime without C++: it loads the phone library when it needs it, and finds the functions of
 * utility/PHONE_VoiceJava.h by their names.
 *
 * On a desk: zyn-recentcalld & zyn-phoned &
 *            java_call 0301112222    type keys to dial them within the call; Ctrl-D hangs up
 */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>

struct phone
{
    int (*init)(void (*on_reply)(char code));
    int (*make_call)(int handle, const char* number, int value);
    int (*dial_extension)(int handle, char character);
    int (*end_call)(int handle);
    void (*deinit)(int handle);
};

/* Sets a function pointer. dlsym() returns a data pointer, which standard C does not convert. */
static int find(void* library, const char* name, void* function)
{
    void* const symbol = dlsym(library, name);
    *(void**)function = symbol;
    return symbol != NULL;
}

static int load(struct phone* phone)
{
    void* const library = dlopen("libzynphone.so.1", RTLD_NOW);
    return library && find(library, "PHONE_VoiceCall_Java_Init", &phone->init)
           && find(library, "PHONE_VoiceCall_Java_MakeCall", &phone->make_call)
           && find(library, "PHONE_VoiceCall_Java_DialExtension", &phone->dial_extension)
           && find(library, "PHONE_VoiceCall_Java_EndCall", &phone->end_call)
           && find(library, "PHONE_VoiceCall_Java_DeInit", &phone->deinit);
}

/* Called from Qt's event loop, if the process runs one. Registering needs a callback in any case. */
static void on_reply(char code)
{
    printf("The phone server replies %d.\n", code);
}

int main(int argc, char** argv)
{
    struct phone phone;

    if (argc != 2) {
        fprintf(stderr, "usage: %s NUMBER\n", argv[0]);
        return 2;
    }
    if (!load(&phone)) {
        fprintf(stderr, "Cannot load the phone library: %s\n", dlerror());
        return EXIT_FAILURE;
    }
    const int handle = phone.init(on_reply);
    if (handle == 0) {
        fputs("Cannot reach the phone server.\n", stderr);
        return EXIT_FAILURE;
    }
    int result = phone.make_call(handle, argv[1], 0);
    if (result == 0)
        printf("A call to %s is asked for.\n", argv[1]);
    fflush(stdout);
    for (int key = 0; result == 0 && (key = getchar()) != EOF;) {
        if (key != '\n')
            result = phone.dial_extension(handle, (char)key);
    }
    if (result == 0)
        result = phone.end_call(handle);
    phone.deinit(handle);
    if (result != 0) {
        fputs("The phone server does not take that.\n", stderr);
        return EXIT_FAILURE;
    }
    puts("The end of the call is asked for.");
    return fflush(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
