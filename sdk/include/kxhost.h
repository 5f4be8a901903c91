// The host's identity and resource services: product pre-name and names,
// application icon, resource libraries and resource strings.
#pragma once

class QIcon;

// Copies the host's product pre-name (e.g. "Kd") into buf (size characters,
// always terminated) and returns non-zero; returns 0 when the host reports
// no pre-name. The pre-name is "Kd" unless the environment variable
// KALDO_PRODUCT_PRENAME sets another one ("" meaning none) or the session
// chose one (kaldo::Runtime::setProductPreName). Without a running host
// the pre-name is "Kd".
int GetKaldProductPreName(wchar_t* buf, int size);

// Loads a resource library by file name: from the folder of the module that
// is initialising, else from the host's modules folder. Returns the library
// handle, or null when it is not found. The handle is never freed.
void* LoadResourceDll(const wchar_t* name);

// The host application's icon, for dialogs to show.
QIcon GetOemAppIcon();
// The host product's display name, e.g. for message-box captions.
const wchar_t* GetOemProductName();

// The resource library that resource strings currently come from (null:
// none). A command sets it for its run and puts the previous one back.
void* kxrxResourceHandle();
void kxrxSetResourceHandle(void* handle);

// The text of id in the current resource library; defaultText when there is
// no current library or it has no such text. The text stays valid while the
// library is loaded (defaultText: as long as the caller keeps it).
const wchar_t* kxmdKxResourceString(unsigned id, const wchar_t* defaultText);
