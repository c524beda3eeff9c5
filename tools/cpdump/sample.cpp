// The push that cpdump decodes when it is given no input: a typical operator
// message that sets up mobile internet (a GPRS access point with PAP login),
// the WAP proxy that uses it, the browser application with its home page, and
// the bootstrap record naming the proxy. It is written the way handsets meet
// such messages in the field: value tokens, a string table, and code page 1
// entered inside the attribute lists of APPLICATION and RESOURCE.
#include "sample.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string_view>

namespace cpdump {
namespace {

constexpr unsigned char kEnd = 0x01, kStrI = 0x03, kStrT = 0x83, kValue = 0x06, kSwitchPage = 0x00;
constexpr unsigned char kParm = 0x87;            // parm, with attributes, no content
constexpr unsigned char kCharacteristic = 0xC6;  // characteristic, with attributes and content

class Writer {
   public:
    Writer &Raw(std::initializer_list<unsigned char> bytes) {
        out_.insert(out_.end(), bytes);
        return *this;
    }
    Writer &Text(std::string_view s) {  // the text and its terminating zero
        // One resize (zero-filled, so the terminator comes with it): gcc 12 at -O3
        // flags insert-then-push_back with a false -Wstringop-overflow.
        const size_t at = out_.size();
        out_.resize(at + s.size() + 1);
        std::copy(s.begin(), s.end(), out_.begin() + static_cast<std::ptrdiff_t>(at));
        return *this;
    }
    Writer &Str(std::string_view s) { return Raw({kStrI}).Text(s); }
    Writer &Table(unsigned char index) { return Raw({kStrT, index}); }

    // <characteristic type=...>, optionally on code page 1.
    Writer &Open(unsigned char type, bool page1 = false) {
        if (page1) return Raw({kCharacteristic, kSwitchPage, 1, type, kEnd});
        return Raw({kCharacteristic, type, kEnd});
    }
    Writer &Close() { return Raw({kEnd}); }

    // <parm name=... value="text"/>
    Writer &Parm(unsigned char name, std::string_view value) {
        return Raw({kParm, name, kValue}).Str(value).Raw({kEnd});
    }
    // <parm name=... value=TOKEN/>
    Writer &ParmToken(unsigned char name, unsigned char token) {
        return Raw({kParm, name, kValue, token, kEnd});
    }
    // A page-1 parm name, switching back to page 0 before the value.
    Writer &Page1Parm(unsigned char name) {
        return Raw({kParm, kSwitchPage, 1, name, kSwitchPage, 0, kValue});
    }

    Bytes Take() { return std::move(out_); }

   private:
    Bytes out_;
};

Bytes Build() {
    Writer w;
    // Push header: TID 1, Push, header length 47, length quote 45, content
    // type application/vnd.wap.connectivity-wbxml, SEC USERPIN, then the MAC:
    // HMAC-SHA1 of the body below with the PIN "1234", as text (recompute it
    // whenever the body changes).
    w.Raw({0x01, 0x06, 0x2F, 0x1F, 0x2D, 0xB6, 0x91, 0x81, 0x92})
        .Text("9B970EB15C77FFBEF39FAC5FA76B73AE4D15E740");

    // WBXML 1.3, public id PROV 1.0, UTF-8, a 16-byte string table.
    w.Raw({0x03, 0x0B, 0x6A, 0x10}).Text("wap.example.net");
    w.Raw({0xC5, 0x46, kEnd});  // <wap-provisioningdoc version="1.0">

    w.Open(0x55);                          // NAPDEF
    w.Parm(0x11, "GPRS-1");                // NAPID
    w.Parm(0x07, "Example Internet");      // NAME
    w.ParmToken(0x10, 0xAB);               // BEARER GSM-GPRS
    w.Parm(0x08, "internet.example.net");  // NAP-ADDRESS
    w.ParmToken(0x09, 0x89);               // NAP-ADDRTYPE APN
    w.Parm(0x48, "10.11.12.13");           // DNS-ADDR
    w.Open(0x5A);                          // NAPAUTHINFO
    w.ParmToken(0x0C, 0x9A);               // AUTHTYPE PAP
    w.Parm(0x0D, "guest");                 // AUTHNAME
    w.Parm(0x0E, "guest");                 // AUTHSECRET
    w.Close().Close();

    w.Open(0x51);                                                               // PXLOGICAL
    w.Raw({kParm, 0x15, kValue}).Table(0).Raw({kEnd});                          // PROXY-ID
    w.Parm(0x07, "Example WAP proxy");                                          // NAME
    w.Raw({kParm, 0x1C, kValue}).Str("http://").Table(0).Str("/").Raw({kEnd});  // STARTPAGE
    w.Open(0x52);                                                               // PXPHYSICAL
    w.Parm(0x2F, "proxy-1");                                                    // PHYSICAL-PROXY-ID
    w.Parm(0x20, "10.0.0.172");                                                 // PXADDR
    w.ParmToken(0x21, 0x85);                                                    // PXADDRTYPE IPV4
    w.Parm(0x22, "GPRS-1");                                                     // TO-NAPID
    w.Open(0x53);                                                               // PORT
    w.Parm(0x23, "9201");                                                       // PORTNBR
    w.ParmToken(0x24, 0xCB);                                                    // SERVICE CO-WSP
    w.Close().Close().Close();

    w.Open(0x55, true);                                              // APPLICATION
    w.Page1Parm(0x36).Str("w2").Raw({kEnd});                         // APPID
    w.Parm(0x07, "Example browser");                                 // NAME
    w.Page1Parm(0x39).Table(0).Raw({kEnd});                          // TO-PROXY
    w.Open(0x59, true);                                              // RESOURCE
    w.Page1Parm(0x3A).Str("http://").Table(0).Str("/").Raw({kEnd});  // URI
    w.Parm(0x07, "Example home");                                    // NAME
    w.Raw({kParm, 0x1C, kEnd});                                      // STARTPAGE, no value
    w.Close().Close();

    w.Raw({kCharacteristic, kSwitchPage, 0, 0x56, kEnd});  // BOOTSTRAP, back on page 0
    w.Parm(0x07, "Example Mobile");                        // NAME
    w.Raw({kParm, 0x15, kValue}).Table(0).Raw({kEnd});     // PROXY-ID
    w.Close();

    w.Close();  // </wap-provisioningdoc>
    return w.Take();
}

}  // namespace

const Bytes &SamplePush() {
    static const Bytes sample = Build();
    return sample;
}

}  // namespace cpdump
