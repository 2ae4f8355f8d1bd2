/* The picture libraries' code, built here with the program's own flags, so that the sanitizers and the
   fuzzer see into the header reading too. Every format the reader knows is kept: any picture it can
   read is shown. */
#define STB_IMAGE_IMPLEMENTATION
#define STBI_NO_STDIO
#define STBI_FAILURE_USERMSG
#include <stb/stb_image.h>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>
