// Makes small PDFs for tests, correct by default and broken on demand.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace murkwell {

class PdfBuilder {
public:
    // Adds an object, given as PDF text, and returns its number; the first one is 1.
    int add(const std::string& text) {
        objects.push_back(text);
        return static_cast<int>(objects.size());
    }

    int addStream(const std::string& content, const std::string& entries = "") {
        return add("<< " + entries + " /Length " + std::to_string(content.size()) +
                   " >>\nstream\n" + content + "\nendstream");
    }

    // "5 0 R"
    static std::string ref(int number) { return std::to_string(number) + " 0 R"; }

    // The whole file. Extra trailer entries go in as text.
    [[nodiscard]] std::vector<std::byte> finish(int root, const std::string& trailer = "") const {
        std::string file = "%PDF-1.7\n";
        std::string table;
        for (std::size_t i = 0; i < objects.size(); ++i) {
            table += entry(file.size());
            file += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
        }
        const std::string size = std::to_string(objects.size() + 1);
        const std::size_t start = file.size();
        file += "xref\n0 " + size + "\n0000000000 65535 f \n" + table + "trailer\n<< /Size " +
                size + " /Root " + ref(root) + " " + trailer + " >>\nstartxref\n" +
                std::to_string(start) + "\n%%EOF\n";
        std::vector<std::byte> bytes(file.size());
        std::memcpy(bytes.data(), file.data(), file.size());
        return bytes;
    }

    // A document whose pages are these dictionaries' entries, such as "/MediaBox [0 0 10 10]".
    static std::vector<std::byte> document(const std::vector<std::string>& pages,
                                           const std::string& treeEntries = "") {
        PdfBuilder builder;
        std::string kids;
        for (const std::string& page : pages) {
            kids += ref(builder.add("<< /Type /Page " + page + " >>")) + " ";
        }
        const int tree = builder.add("<< /Type /Pages /Count " + std::to_string(pages.size()) +
                                     " /Kids [" + kids + "] " + treeEntries + " >>");
        return builder.finish(builder.add("<< /Type /Catalog /Pages " + ref(tree) + " >>"));
    }

private:
    static std::string entry(std::size_t offset) {
        char text[24];
        std::snprintf(text, sizeof text, "%010zu 00000 n \n", offset);
        return text;
    }

    std::vector<std::string> objects;
};

} // namespace murkwell
