#include "platform/pdf/PageMending.h"

#include "platform/pdf/ContentMending.h"

namespace murkwell {

bool PageMending::mend(pdf_page* page) {
    return attempt(context, [&] {
        pageResources = pdf_page_resources(context, page);
        mendResources(pageResources);
        withMended(pdf_page_contents(context, page), pageResources, [&](fz_buffer* content) {
            pdf_dict_put_drop(context, page->obj, PDF_NAME(Contents),
                              pdf_add_stream(context, document, content, nullptr, 0));
        });
        pdf_obj* const annotations = pdf_dict_get(context, page->obj, PDF_NAME(Annots));
        for (int i = 0; i < pdf_array_len(context, annotations); ++i) {
            mendAppearances(pdf_array_get(context, annotations, i));
        }
        while (!pending.empty()) {
            const Stream stream = pending.back();
            pending.pop_back();
            current = stream.number;
            mendStream(stream);
        }
    });
}

// The members below may longjmp out.

void PageMending::mendResources(pdf_obj* resources) {
    keepUsable(resources, PDF_NAME(ColorSpace), [&](pdf_obj* space) {
        return loads([&] { fz_drop_colorspace(context, pdf_load_colorspace(context, space)); });
    });
    keepUsable(resources, PDF_NAME(Shading), [&](pdf_obj* shading) {
        return loads([&] { fz_drop_shade(context, pdf_load_shading(context, document, shading)); });
    });
    keepUsable(resources, PDF_NAME(Pattern),
               [&](pdf_obj* pattern) { return isUsablePattern(pattern); });
    keepUsable(resources, PDF_NAME(XObject),
               [&](pdf_obj* object) { return isUsableObject(object); });
    keepUsable(resources, PDF_NAME(ExtGState), [&](pdf_obj* state) {
        mendLater(pdf_dict_getl(context, state, PDF_NAME(SMask), PDF_NAME(G), nullptr));
        return true;
    });
}

// What is missing from the resources ends only the operator that asks for it.
template <typename IsUsable>
void PageMending::keepUsable(pdf_obj* resources, pdf_obj* category, IsUsable&& isUsable) {
    pdf_obj* const dictionary = pdf_dict_get(context, resources, category);
    for (int i = pdf_dict_len(context, dictionary) - 1; i >= 0; --i) {
        if (!isUsable(pdf_dict_get_val(context, dictionary, i))) {
            pdf_dict_del(context, dictionary, pdf_dict_get_key(context, dictionary, i));
            takenOut = true;
        }
    }
}

bool PageMending::isUsableObject(pdf_obj* object) {
    pdf_obj* const subtype = pdf_dict_get(context, object, PDF_NAME(Subtype));
    if (pdf_name_eq(context, subtype, PDF_NAME(Form)) != 0) {
        mendLater(object);
    } else if (pdf_name_eq(context, subtype, PDF_NAME(Image)) != 0) {
        return loads([&] { fz_drop_image(context, pdf_load_image(context, document, object)); });
    }
    return true;
}

bool PageMending::isUsablePattern(pdf_obj* pattern) {
    if (pdf_dict_get_int(context, pattern, PDF_NAME(PatternType)) == 1) {
        mendLater(pattern);
        return true;
    }
    return loads([&] { fz_drop_shade(context, pdf_load_shading(context, document, pattern)); });
}

// A form may name what only the one around it has, or the page.
void PageMending::inherit(pdf_obj* resources, pdf_obj* outer) {
    if (pdf_is_dict(context, resources) == 0) {
        return;
    }
    for (int i = pdf_dict_len(context, outer) - 1; i >= 0; --i) {
        pdf_obj* const category = pdf_dict_get_key(context, outer, i);
        pdf_obj* const all = pdf_dict_get_val(context, outer, i);
        pdf_obj* own = pdf_dict_get(context, resources, category);
        if (own == nullptr && pdf_is_dict(context, all) != 0) {
            own = pdf_dict_put_dict(context, resources, category, 1);
        }
        for (int k = pdf_is_dict(context, own) != 0 ? pdf_dict_len(context, all) : 0; k > 0; --k) {
            pdf_obj* const name = pdf_dict_get_key(context, all, k - 1);
            if (pdf_dict_get(context, own, name) == nullptr) {
                pdf_dict_put(context, own, name, pdf_dict_get_val(context, all, k - 1));
            }
        }
    }
}

// What a stream draws with.
pdf_obj* PageMending::resourcesOf(int number) {
    pdf_obj* const stream = pdf_new_indirect(context, document, number, 0);
    pdf_obj* resources = nullptr;
    const bool isRead =
        attempt(context, [&] { resources = pdf_dict_get(context, stream, PDF_NAME(Resources)); });
    pdf_drop_obj(context, stream);
    if (!isRead) {
        fz_rethrow(context);
    }
    return resources == nullptr ? pageResources : resources;
}

void PageMending::mendAppearances(pdf_obj* annotation) {
    pdf_obj* const appearance =
        pdf_dict_getl(context, annotation, PDF_NAME(AP), PDF_NAME(N), nullptr);
    if (pdf_is_stream(context, appearance) != 0) {
        mendLater(appearance);
        return;
    }
    for (int i = 0; i < pdf_dict_len(context, appearance); ++i) {
        mendLater(pdf_dict_get_val(context, appearance, i));
    }
}

void PageMending::mendLater(pdf_obj* stream) {
    const int number = pdf_to_num(context, stream);
    if (pdf_is_stream(context, stream) != 0 && seen.insert(number).second) {
        pending.push_back({number, current});
    }
}

void PageMending::mendStream(Stream pendingStream) {
    pdf_obj* const outer =
        pendingStream.user == 0 ? pageResources : resourcesOf(pendingStream.user);
    pdf_obj* const stream = pdf_new_indirect(context, document, pendingStream.number, 0);
    const bool isMended = attempt(context, [&] {
        pdf_obj* const resources = pdf_dict_get(context, stream, PDF_NAME(Resources));
        mendResources(resources);
        inherit(resources, outer);
        withMended(stream, resources == nullptr ? outer : resources, [&](fz_buffer* content) {
            pdf_update_stream(context, document, stream, content, 0);
        });
    });
    pdf_drop_obj(context, stream);
    if (!isMended) {
        fz_rethrow(context);
    }
}

// Calls `replace` with as much of the content as can be read, mended, unless it can stay as it is.
template <typename Replace>
void PageMending::withMended(pdf_obj* content, pdf_obj* resources, Replace&& replace) {
    fz_buffer* const buffer = readContent(content);
    const bool isMended = attempt(context, [&] {
        const ContentMending mending = mendContent(context, document, resources, buffer);
        takenOut = takenOut || mending.hasLost;
        if (mending.isChanged || !isReadable) {
            replace(buffer);
        }
    });
    fz_drop_buffer(context, buffer);
    if (!isMended) {
        fz_rethrow(context);
    }
}

// The caller owns the buffer, which is empty when the content is not readable.
fz_buffer* PageMending::readContent(pdf_obj* content) {
    fz_stream* stream = nullptr;
    fz_buffer* buffer = nullptr;
    int isCut = 0;
    isReadable = attempt(context, [&] {
        stream = pdf_open_contents_stream(context, document, content);
        buffer = fz_read_best(context, stream, 0, &isCut, 0);
    });
    fz_drop_stream(context, stream);
    requireData(isReadable);
    takenOut = takenOut || isCut != 0 || !isReadable;
    return isReadable ? buffer : fz_new_buffer(context, 1);
}

template <typename Load>
bool PageMending::loads(Load&& load) {
    const bool isLoaded = attempt(context, load);
    requireData(isLoaded);
    return isLoaded;
}

// After a failure: throws when nothing at all is to be had any more.
void PageMending::requireData(bool isThere) {
    if (!isThere && (ranOut(context) || cookie.abort != 0)) {
        fz_throw(context, FZ_ERROR_MEMORY, "no more to be had");
    }
}

} // namespace murkwell
