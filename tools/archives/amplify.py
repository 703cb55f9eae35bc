"""The amplify panel: room for the gain sliders, which the editor makes in code, and the link switch under them."""
from nodes import checkbox, localized, sub_view

MARGIN = 16
ROW = 40  # a slider with its ruler


def root():
    rows = 2 * ROW
    container = sub_view((MARGIN, MARGIN, 448, rows), "GainControlsContainer", AutoLayout=True,
                         AutoLayout_ScaleChildren=True)
    link = checkbox((128, MARGIN + rows + 8, 160, 24), "LinkChannels",
                    localized("AmplifyXML/LinkChannels", "Link Channels"),
                    tooltip=localized("AmplifyXML/LinkChannelsTip", "Moves all channels together"))
    return sub_view((0, 0, 480, MARGIN + rows + 8 + 24 + MARGIN), children=(container, link), AutoLayout=True,
                    AutoLayout_MaintainMargins=True)
