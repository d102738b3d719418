/* The Core Foundation declarations that the program calls, for cross-compiling where Apple's SDK is
 * not available. Only scripts/check-macos finds this folder; a build on macOS uses the system's own
 * header and library. A call that is missing here is added here and in CoreFoundation.tbd. */
#ifndef RCP_CORE_FOUNDATION_DECLARATIONS
#define RCP_CORE_FOUNDATION_DECLARATIONS

#ifdef __cplusplus
extern "C" {
#endif

/* Base types as <MacTypes.h> and <CoreFoundation/CFBase.h> have them on 64-bit systems. */
typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef unsigned int UInt32;
typedef signed long CFIndex;
typedef unsigned long CFOptionFlags;
typedef unsigned long CFTypeID;
typedef UInt32 CFStringEncoding;

typedef const void* CFTypeRef;
typedef CFTypeRef CFPropertyListRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFData* CFDataRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef struct __CFDictionary* CFMutableDictionaryRef;
typedef struct __CFError* CFErrorRef;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFURL* CFURLRef;

typedef CFIndex CFComparisonResult;
enum { kCFCompareLessThan = -1L, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 };
typedef CFOptionFlags CFStringCompareFlags;
enum { kCFCompareCaseInsensitive = 1UL };
enum { kCFStringEncodingUTF8 = 0x08000100 };
enum { kCFPropertyListImmutable = 0 };
typedef CFIndex CFPropertyListFormat;
enum { kCFPropertyListXMLFormat_v1_0 = 100 };

void CFRelease(CFTypeRef cf);
CFTypeID CFGetTypeID(CFTypeRef cf);

CFTypeID CFBooleanGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef boolean);

CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
const UInt8* CFDataGetBytePtr(CFDataRef data);
CFIndex CFDataGetLength(CFDataRef data);

CFTypeID CFDictionaryGetTypeID(void);
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                     CFDictionaryRef dictionary);
void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value);

CFTypeID CFStringGetTypeID(void);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);
CFComparisonResult CFStringCompare(CFStringRef left, CFStringRef right,
                                   CFStringCompareFlags options);

CFURLRef CFURLCreateFromFileSystemRepresentationRelativeToBase(CFAllocatorRef allocator,
                                                               const UInt8* bytes, CFIndex length,
                                                               Boolean isDirectory, CFURLRef base);
Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8* buffer,
                                         CFIndex size);

/* Deprecated as on macOS, so that the warning is seen here as well. */
__attribute__((deprecated)) CFPropertyListRef CFPropertyListCreateFromXMLData(
    CFAllocatorRef allocator, CFDataRef data, CFOptionFlags options, CFStringRef* error);
CFDataRef CFPropertyListCreateData(CFAllocatorRef allocator, CFPropertyListRef list,
                                   CFPropertyListFormat format, CFOptionFlags options,
                                   CFErrorRef* error);

#ifdef __cplusplus
}
#endif

#endif
