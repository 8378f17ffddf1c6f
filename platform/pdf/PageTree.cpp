#include "platform/pdf/PageTree.h"

#include <array>
#include <set>
#include <utility>
#include <vector>

namespace murkwell {
namespace {

// Pages are looked up by walking the tree, so a node does not list more than this many.
constexpr int pagesPerNode = 256;

const std::array inheritableKeys{PDF_NAME(Resources), PDF_NAME(MediaBox), PDF_NAME(CropBox),
                                 PDF_NAME(Rotate)};

// A counted reference to an object. A repair of the file, which any look at it can set off, may
// drop the document's own.
class ObjectRef {
public:
    ObjectRef() = default;
    ObjectRef(fz_context* usedContext, pdf_obj* borrowed)
        : context(usedContext), object(pdf_keep_obj(usedContext, borrowed)) {}
    ~ObjectRef() { pdf_drop_obj(context, object); }
    ObjectRef(const ObjectRef& other) : ObjectRef(other.context, other.object) {}
    ObjectRef(ObjectRef&& other) noexcept { swap(other); }
    ObjectRef& operator=(ObjectRef other) noexcept {
        swap(other);
        return *this;
    }

    [[nodiscard]] pdf_obj* get() const { return object; }

private:
    void swap(ObjectRef& other) noexcept {
        std::swap(context, other.context);
        std::swap(object, other.object);
    }

    fz_context* context = nullptr;
    pdf_obj* object = nullptr;
};

struct Node {
    ObjectRef object; // null: no node
    std::array<ObjectRef, inheritableKeys.size()> inherited;
};

// The walk asks for one thing at a time and takes an unreadable answer for none.
template <typename Query>
auto answer(fz_context* context, Query&& query) {
    decltype(query()) result{};
    return attempt(context, [&] { result = query(); }) ? result : decltype(query()){};
}

class PageTreeWalk {
public:
    PageTreeWalk(fz_context* usedContext, pdf_obj* root) : context(usedContext) {
        pending.push_back({ObjectRef(context, root), {}});
    }

    // The next page in document order; its object is null when there are no more.
    Node next() {
        while (!pending.empty()) {
            Node node = std::move(pending.back());
            pending.pop_back();
            addOwnAttributes(node);
            const ObjectRef kids = valueOf(node.object.get(), PDF_NAME(Kids));
            if (answer(context, [&] { return pdf_is_array(context, kids.get()); }) != 0) {
                pushKids(kids.get(), node);
            } else if (answer(context, [&] { return pdf_is_dict(context, node.object.get()); }) !=
                       0) {
                return node;
            }
        }
        return {};
    }

private:
    ObjectRef valueOf(pdf_obj* dictionary, pdf_obj* key) {
        return {context, answer(context, [&] { return pdf_dict_get(context, dictionary, key); })};
    }

    void addOwnAttributes(Node& node) {
        for (std::size_t i = 0; i < inheritableKeys.size(); ++i) {
            ObjectRef own = valueOf(node.object.get(), inheritableKeys.at(i));
            if (own.get() != nullptr) {
                node.inherited.at(i) = std::move(own);
            }
        }
    }

    // A node that was seen before is a cycle, or would count its pages twice.
    void pushKids(pdf_obj* kids, const Node& node) {
        const int number = pdf_to_num(context, node.object.get());
        if (number != 0 && !seen.insert(number).second) {
            return;
        }
        const int count = answer(context, [&] { return pdf_array_len(context, kids); });
        for (int i = count - 1; i >= 0; --i) {
            if (pdf_obj* const kid =
                    answer(context, [&] { return pdf_array_get(context, kids, i); })) {
                pending.push_back({ObjectRef(context, kid), node.inherited});
            }
        }
    }

    fz_context* context;
    std::vector<Node> pending; // a stack: the next one last
    std::set<int> seen;        // object numbers of the nodes that have been opened
};

// The functions below may longjmp out: they make no object that has a destructor.

void addPage(fz_context* context, pdf_document* document, pdf_obj* parent, const Node& page) {
    pdf_obj* const object = page.object.get();
    for (std::size_t i = 0; i < inheritableKeys.size(); ++i) {
        if (pdf_obj* const value = page.inherited.at(i).get()) {
            pdf_dict_put(context, object, inheritableKeys.at(i), value);
        }
    }
    pdf_dict_put(context, object, PDF_NAME(Type), PDF_NAME(Page));
    pdf_dict_put(context, object, PDF_NAME(Parent), parent);
    pdf_obj* const kids = pdf_dict_get(context, parent, PDF_NAME(Kids));
    if (pdf_is_indirect(context, object) != 0) {
        pdf_array_push(context, kids, object);
    } else {
        pdf_array_push_drop(context, kids, pdf_add_object(context, document, object));
    }
    pdf_dict_put_int(context, parent, PDF_NAME(Count), pdf_array_len(context, kids));
}

// An empty tree node; the caller owns a reference.
pdf_obj* makeNode(fz_context* context, pdf_document* document) {
    pdf_obj* node = nullptr;
    const bool isMade = attempt(context, [&] {
        node = pdf_add_new_dict(context, document, 4);
        pdf_dict_put(context, node, PDF_NAME(Type), PDF_NAME(Pages));
        pdf_dict_put_array(context, node, PDF_NAME(Kids), 1);
        pdf_dict_put_int(context, node, PDF_NAME(Count), 0);
    });
    if (!isMade) {
        pdf_drop_obj(context, node);
        fz_rethrow(context);
    }
    return node;
}

// An empty node under the root; the tree owns it.
pdf_obj* addNode(fz_context* context, pdf_document* document, pdf_obj* root) {
    pdf_obj* const node = makeNode(context, document);
    pdf_array_push_drop(context, pdf_dict_get(context, root, PDF_NAME(Kids)), node);
    pdf_dict_put(context, node, PDF_NAME(Parent), root);
    return node;
}

void installRoot(fz_context* context, pdf_document* document, pdf_obj* root, int pageCount) {
    pdf_dict_put_int(context, root, PDF_NAME(Count), pageCount);
    pdf_obj* const catalog = pdf_dict_get(context, pdf_trailer(context, document), PDF_NAME(Root));
    pdf_dict_put(context, catalog, PDF_NAME(Pages), root);
}

} // namespace

namespace {

int flattenOnce(fz_context* context, pdf_document* document) {
    pdf_obj* const oldRoot = answer(context, [&] {
        return pdf_dict_getl(context, pdf_trailer(context, document), PDF_NAME(Root),
                             PDF_NAME(Pages), nullptr);
    });
    pdf_obj* const newRoot = answer(context, [&] { return makeNode(context, document); });
    if (oldRoot == nullptr || newRoot == nullptr) {
        pdf_drop_obj(context, newRoot);
        return 0;
    }
    PageTreeWalk walk(context, oldRoot);
    int pageCount = 0;
    pdf_obj* node = nullptr;
    for (Node page = walk.next(); page.object.get() != nullptr; page = walk.next()) {
        if (pageCount % pagesPerNode == 0) {
            node = answer(context, [&] { return addNode(context, document, newRoot); });
        }
        if (node == nullptr || !attempt(context, [&] { addPage(context, document, node, page); })) {
            break;
        }
        ++pageCount;
    }
    const bool installed =
        attempt(context, [&] { installRoot(context, document, newRoot, pageCount); });
    pdf_drop_obj(context, newRoot);
    return installed ? pageCount : 0;
}

} // namespace

int flattenPageTree(fz_context* context, pdf_document* document) {
    const int wasRepaired = pdf_was_repaired(context, document);
    const int pageCount = flattenOnce(context, document);
    // A repair drops whatever was changed before it. There is only one.
    return pdf_was_repaired(context, document) == wasRepaired ? pageCount
                                                              : flattenOnce(context, document);
}

} // namespace murkwell
