#pragma once

// GNU libintl's interface, as far as it is used: on Linux it is a part of the C library, on a Mac a library of
// its own whose functions have these other names.
#ifdef __cplusplus
extern "C" {
#endif
char* libintl_bindtextdomain(const char* domain, const char* folder);
char* libintl_bind_textdomain_codeset(const char* domain, const char* codeset);
char* libintl_dgettext(const char* domain, const char* text);
char* libintl_dngettext(const char* domain, const char* one, const char* several, unsigned long count);
#ifdef __cplusplus
}
#endif

#define bindtextdomain libintl_bindtextdomain
#define bind_textdomain_codeset libintl_bind_textdomain_codeset
#define dgettext libintl_dgettext
#define dngettext libintl_dngettext
