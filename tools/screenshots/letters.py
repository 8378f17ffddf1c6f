"""The document in the pictures: letters with invented people in them."""

from documents import pdf, stream

# Weight and size of the print, and what it says.
LETTER = [
    ("B", 20, "Harbour Street Legal Aid"),
    ("R", 11, "14 Harbour Street, Port Ellis, office@harbour-aid.example.org, (555) 010-7788"),
    ("R", 11, ""),
    ("B", 13, "Re: Intake of {name}, case {case}"),
    ("R", 11, ""),
    ("R", 11, "Dear colleague,"),
    ("R", 11, ""),
    ("R", 11, "the client came to the office on Tuesday. The particulars are below. Please keep them to"),
    ("R", 11, "the smallest circle of people; copies for the court are to be redacted beforehand."),
    ("R", 11, ""),
    ("R", 11, "Name: {name}"),
    ("R", 11, "E-mail: {mail}"),
    ("R", 11, "Telephone: {phone}"),
    ("R", 11, "Social security number: {ssn}"),
    ("R", 11, "Card on file: {card}"),
    ("R", 11, "Last sign-in from: {ip}"),
    ("R", 11, ""),
    ("R", 11, "The landlord was told on 3 March that the heating had failed and that two children live"),
    ("R", 11, "in the flat. He answered from {ip} that he would look into it. Nothing"),
    ("R", 11, "happened for five weeks. The neighbours, who had the same trouble, would give evidence"),
    ("R", 11, "if their names are kept back."),
    ("R", 11, ""),
    ("R", 11, "We ask for an order without a hearing, since every further week of cold does harm."),
    ("R", 11, "Answers may be sent to {mail} or given by telephone,"),
    ("R", 11, "{phone}, in the mornings."),
    ("R", 11, ""),
    ("R", 11, "With kind regards,"),
    ("R", 11, "M. Okafor, caseworker"),
]
CLIENTS = [
    {"name": "Anna Example", "case": "2026-0417", "mail": "anna.example@mail.example.org",
     "phone": "(555) 010-2233", "ssn": "078-05-1120", "card": "4111 1111 1111 1111",
     "ip": "192.0.2.41"},
    {"name": "Boris Sample", "case": "2026-0418", "mail": "b.sample@post.example.net",
     "phone": "(555) 010-9141", "ssn": "219-09-9999", "card": "5500 0000 0000 0004",
     "ip": "198.51.100.7"},
    {"name": "Carla Muster", "case": "2026-0423", "mail": "carla@muster.example.com",
     "phone": "(555) 010-5566", "ssn": "457-55-5462", "card": "3714 4963 5398 431",
     "ip": "203.0.113.90"},
]
WIDTH, HEIGHT = 612, 792


def letters(count):
    """A PDF of so many letters, one a page."""
    fonts = "/Font << /R 3 0 R /B 4 0 R >>"
    objects = [b"<< /Type /Catalog /Pages 2 0 R >>", None,
               b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>",
               b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica-Bold >>"]
    kids = []
    for number in range(count):
        y, lines = 710, []
        for weight, size, line in LETTER:
            said = line.format(**CLIENTS[number % len(CLIENTS)])
            said = said.replace("(", r"\(").replace(")", r"\)")
            lines.append(f"BT /{weight} {size} Tf 72 {y:.1f} Td ({said}) Tj ET")
            y -= 1.7 * size
        objects.append(stream("\n".join(lines)))
        objects.append(f"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 {WIDTH} {HEIGHT}] "
                       f"/Contents {len(objects)} 0 R /Resources << {fonts} >> >>".encode())
        kids.append(f"{len(objects)} 0 R")
    objects[1] = f"<< /Type /Pages /Count {count} /Kids [{' '.join(kids)}] >>".encode()
    return pdf(objects, 1)
