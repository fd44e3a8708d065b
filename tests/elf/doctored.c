// What makes a copy of the library break its promises.
#if defined(FIFTH_EXPORT)
int vorn_fifth(void);
int vorn_fifth(void) {
    return 5;
}
#elif defined(CARELESS)
// An address among the code, which the loader would have to write there.
__asm__(
    ".pushsection .text\n"
    ".balign 8\n"
    ".quad puts\n"
    ".popsection\n");
// More than the library may measure.
const char ballast[1000000] __attribute__((used)) = {1};
#endif
