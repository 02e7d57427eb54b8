"""Reads a message written by KNMimeMessageBuilder with Python's email package (modern policy)
and fails when Python finds a defect or reads a name, a subject or the attachment differently."""
import email
import email.policy
import sys

data = open(sys.argv[1], "rb").read()
message = email.message_from_bytes(data, policy=email.policy.default)
problems = []
for part in message.walk():
    problems += [f"{part.get_content_type()}: {d!r}" for d in part.defects]
    for name, value in part.items():
        problems += [f"{name}: {d!r}" for d in getattr(value, "defects", ())]
if str(message["Subject"]) != "Übersicht Q2 – bitte lesen, eine Betreffzeile, die länger ist als eine Zeile":
    problems.append(f"subject read as {message['Subject']!r}")
if message["From"].addresses[0].display_name != "José García":
    problems.append(f"From read as {message['From']!r}")
if [a.display_name for a in message["To"].addresses] != ["Team", "Doe, Jane"]:
    problems.append(f"To read as {message['To']!r}")
files = [p for p in message.walk() if p.get_filename()]
expected = bytes((i * 37) & 0xFF for i in range(3000))
names = [p.get_filename() for p in files]
if names != ["logo.png", "Übersicht des zweiten Quartals mit sehr langem Namen für alle.pdf"]:
    problems.append(f"file names read as {names!r}")
elif files[1].get_content() != expected:
    problems.append("the attachment's bytes differ")
if message.get_body(("plain",)).get_content().replace("\r\n", "\n") != "Hallo,\nanbei die Übersicht.\n":
    problems.append("the text body differs")
if problems:
    print("\n".join(problems))
    sys.exit(1)
print("python email read the message without defects")
