#include "platform/HttpClient.h"

#include "platform/StopFlag.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <vector>

#include <curl/curl.h>
#include <dlfcn.h>

namespace Orvanta {

namespace {

// The library brings thirty others along, whose loading would cost every run some milliseconds: it is loaded by the
// runs that ask a server.
struct Library {
    Library() {
        void* const handle = dlopen("libcurl.so.4", RTLD_NOW | RTLD_LOCAL);
        if (handle == nullptr) {
            throw HttpException("libcurl can't be loaded: install the package \"libcurl4\"");
        }
        // It stays loaded: the library has threads and memory of its own.
        Load(handle, "curl_easy_init", init);
        Load(handle, "curl_easy_reset", reset);
        Load(handle, "curl_easy_cleanup", cleanup);
        Load(handle, "curl_easy_setopt", setOption);
        Load(handle, "curl_easy_perform", perform);
        Load(handle, "curl_easy_getinfo", getInfo);
        Load(handle, "curl_easy_strerror", errorText);
        Load(handle, "curl_slist_append", appendToList);
        Load(handle, "curl_slist_free_all", freeList);
        decltype(&curl_global_init) globalInit = nullptr;
        Load(handle, "curl_global_init", globalInit);
        globalInit(CURL_GLOBAL_DEFAULT);
    }

    template <typename Function>
    static void Load(void* handle, const char* name, Function& function) {
        function = reinterpret_cast<Function>(dlsym(handle, name));
        if (function == nullptr) {
            throw HttpException(std::string("libcurl lacks ") + name);
        }
    }

    decltype(&curl_easy_init) init = nullptr;
    decltype(&curl_easy_reset) reset = nullptr;
    decltype(&curl_easy_cleanup) cleanup = nullptr;
    decltype(&curl_easy_setopt) setOption = nullptr;
    decltype(&curl_easy_perform) perform = nullptr;
    decltype(&curl_easy_getinfo) getInfo = nullptr;
    decltype(&curl_easy_strerror) errorText = nullptr;
    decltype(&curl_slist_append) appendToList = nullptr;
    decltype(&curl_slist_free_all) freeList = nullptr;
};

const Library& LoadedLibrary() {
    static const Library loaded;
    return loaded;
}

constexpr long ConnectSeconds = 5;
// Slower than that for so long is taken for an end.
constexpr long SlowestBytesPerSecond = 1024;
constexpr long SlowSeconds = 5;
constexpr long LongestSeconds = 120;

std::size_t TakeBody(const char* bytes, std::size_t size, std::size_t count, void* target) {
    auto& body = *static_cast<std::string*>(target);
    if (body.size() + size * count > LongestHttpBody) {
        return 0; // ends the transfer
    }
    body.append(bytes, size * count);
    return size * count;
}

std::size_t GiveBody(char* target, std::size_t size, std::size_t count, void* source) {
    auto& rest = *static_cast<std::string_view*>(source);
    const std::size_t given = std::min(size * count, rest.size());
    std::memcpy(target, rest.data(), given);
    rest.remove_prefix(given);
    return given;
}

int LookAtStopFlag(void*, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    return ProcessStopFlag().IsSet() ? 1 : 0;
}

} // namespace

struct HttpClient::Connections {
    explicit Connections(const std::string& token) : library(LoadedLibrary()) {
        if (!token.empty()) {
            headers = library.appendToList(headers, ("Authorization: Bearer " + token).c_str());
        }
        // No server is asked whether it wants what it gets.
        headers = library.appendToList(headers, "Expect:");
    }

    ~Connections() {
        for (CURL* const handle : idle) {
            library.cleanup(handle);
        }
        library.freeList(headers);
    }

    Connections(const Connections&) = delete;
    Connections& operator=(const Connections&) = delete;

    // One that nobody uses: each holds a connection.
    CURL* Take() {
        {
            const std::lock_guard lock(mutex);
            if (!idle.empty()) {
                CURL* const handle = idle.back();
                idle.pop_back();
                return handle;
            }
        }
        CURL* const handle = library.init();
        if (handle == nullptr) {
            throw HttpException("no memory for a connection");
        }
        return handle;
    }

    void GiveBack(CURL* handle) {
        library.reset(handle); // the connection stays
        const std::lock_guard lock(mutex);
        idle.push_back(handle);
    }

    void SetCommonOptions(CURL* handle, const std::string& address, HttpAnswer& answer) const {
        library.setOption(handle, CURLOPT_URL, address.c_str());
        library.setOption(handle, CURLOPT_PROTOCOLS_STR, "http,https");
        library.setOption(handle, CURLOPT_NOSIGNAL, 1L);
        library.setOption(handle, CURLOPT_CONNECTTIMEOUT, ConnectSeconds);
        library.setOption(handle, CURLOPT_LOW_SPEED_LIMIT, SlowestBytesPerSecond);
        library.setOption(handle, CURLOPT_LOW_SPEED_TIME, SlowSeconds);
        library.setOption(handle, CURLOPT_TIMEOUT, LongestSeconds);
        library.setOption(handle, CURLOPT_HTTPHEADER, headers);
        library.setOption(handle, CURLOPT_USERAGENT, "orvanta-analyzer");
        library.setOption(handle, CURLOPT_WRITEFUNCTION, &TakeBody);
        library.setOption(handle, CURLOPT_WRITEDATA, &answer.body);
        library.setOption(handle, CURLOPT_XFERINFOFUNCTION, &LookAtStopFlag);
        library.setOption(handle, CURLOPT_NOPROGRESS, 0L);
    }

    // Sets what is particular about a request with `prepare(handle)`, and makes it.
    template <typename Prepare>
    HttpAnswer Ask(const std::string& address, const Prepare& prepare) {
        CURL* const handle = Take();
        HttpAnswer answer;
        SetCommonOptions(handle, address, answer);
        prepare(handle);
        const CURLcode result = library.perform(handle);
        long status = 0;
        library.getInfo(handle, CURLINFO_RESPONSE_CODE, &status);
        GiveBack(handle);
        if (result != CURLE_OK) {
            throw HttpException(library.errorText(result));
        }
        answer.status = static_cast<int>(status);
        return answer;
    }

    const Library& library;
    curl_slist* headers = nullptr;
    std::mutex mutex;
    std::vector<CURL*> idle; // guarded by mutex
};

HttpClient::HttpClient(const std::string& token) : connections_(std::make_unique<Connections>(token)) {}

HttpClient::~HttpClient() = default;

HttpAnswer HttpClient::Get(const std::string& address) {
    return connections_->Ask(address, [](CURL*) {});
}

int HttpClient::Head(const std::string& address) {
    return connections_
        ->Ask(address, [this](CURL* handle) { connections_->library.setOption(handle, CURLOPT_NOBODY, 1L); })
        .status;
}

HttpAnswer HttpClient::Put(const std::string& address, std::string_view body) {
    std::string_view rest = body;
    return connections_->Ask(address, [this, &rest](CURL* handle) {
        const Library& library = connections_->library;
        library.setOption(handle, CURLOPT_UPLOAD, 1L);
        library.setOption(handle, CURLOPT_READFUNCTION, &GiveBody);
        library.setOption(handle, CURLOPT_READDATA, &rest);
        library.setOption(handle, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(rest.size()));
    });
}

} // namespace Orvanta
